#include "qellib10/evaluation/local_fit.h"

#include <cmath>

namespace qel {
namespace {

constexpr std::size_t kHighestDegree = 8;
constexpr double kEven = 1e-9;  // of a step

}  // namespace

LocalFit::LocalFit(const CurveData& data, std::size_t window, std::size_t degree)
    : m_data(data), m_window(window), m_degree(degree), m_polynomial(degree) {}

std::pair<std::size_t, std::size_t> LocalFit::WindowAt(std::size_t index) const {
    const auto [first, last] = m_data.PartOf(index);
    const std::size_t length = std::min(m_window, last - first);
    const std::size_t start = std::clamp(index - std::min(index, length / 2), first, last - length);
    return {start, start + length};
}

CurveValue LocalFit::Sum(std::size_t first, double place, std::span<const double> y) const {
    double value = 0, variance = 0;
    for (std::size_t i = 0; i < m_weights.size(); ++i) {
        value += m_weights[i] * y[first + i];
        variance += m_weights[i] * m_weights[i] / m_data.counts[first + i];
    }
    return {place, value, m_data.noise * std::sqrt(variance)};
}

bool LocalFit::At(std::size_t index, double place, std::size_t order, CurveValue& found) {
    return At(index, place, order, m_data.y, found);
}

bool LocalFit::At(std::size_t index, double place, std::size_t order, std::span<const double> y, CurveValue& found) {
    const auto [first, last] = WindowAt(index);
    const std::size_t length = last - first;
    m_weights.resize(length);
    const std::span<const double> counts =
        m_data.areEqualCounts ? std::span<const double>{} : std::span(m_data.counts).subspan(first, length);
    if (!m_polynomial.Weights(std::span(m_data.x).subspan(first, length), counts, place, order, m_weights))
        return false;
    found = Sum(first, place, y);
    return true;
}

double LocalFit::NoiseOf(std::size_t index, std::span<const double> rates, std::size_t order) {
    const std::size_t start = WindowAt(index).first, end = WindowAt(index + rates.size() - 1).second;
    std::vector<double> weights(end - start);
    for (std::size_t i = 0; i < rates.size(); ++i) {
        CurveValue value;
        if (!At(index + i, m_data.x[index + i], order, value)) return std::numeric_limits<double>::infinity();
        const std::size_t offset = WindowAt(index + i).first - start;
        for (std::size_t k = 0; k < m_weights.size(); ++k) weights[offset + k] += rates[i] * m_weights[k];
    }
    double variance = 0;
    for (std::size_t k = 0; k < weights.size(); ++k) variance += weights[k] * weights[k] / m_data.counts[start + k];
    return m_data.noise * std::sqrt(variance);
}

bool LocalFit::IsEven(std::size_t first, std::size_t last) const {
    if (!m_data.areEqualCounts) return false;
    const double step = (m_data.x[last - 1] - m_data.x[first]) / static_cast<double>(last - first - 1);
    for (std::size_t i = first + 1; i < last; ++i) {
        if (std::abs(m_data.x[i] - m_data.x[i - 1] - step) > kEven * step) return false;
    }
    return true;
}

void LocalFit::AddEvenPart(std::size_t first, std::size_t last, std::size_t order, std::vector<CurveValue>& values) {
    const std::size_t length = std::min(m_window, last - first);
    const double step = (m_data.x[last - 1] - m_data.x[first]) / static_cast<double>(last - first - 1);
    std::vector<double> x;
    for (std::size_t i = 0; i < length; ++i) x.push_back(step * static_cast<double>(i));
    m_weights.resize(length);
    std::size_t offset = length;  // that the weights are for
    for (std::size_t i = first; i < last; ++i) {
        const std::size_t start = WindowAt(i).first;
        if (i - start != offset) {
            offset = i - start;
            if (!m_polynomial.Weights(x, {}, x[offset], order, m_weights)) return;
        }
        values.push_back(Sum(start, m_data.x[i], m_data.y));
    }
}

std::vector<CurveValue> LocalFit::All(std::size_t order) {
    std::vector<CurveValue> values;
    values.reserve(m_data.size());
    for (std::size_t part = 0; part + 1 < m_data.parts.size(); ++part) {
        const std::size_t first = m_data.parts[part], last = m_data.parts[part + 1];
        if (last - first <= m_degree) continue;
        if (last - first > 1 && IsEven(first, last)) {
            AddEvenPart(first, last, order, values);
            continue;
        }
        for (std::size_t i = first; i < last; ++i) {
            CurveValue value;
            if (At(i, m_data.x[i], order, value)) values.push_back(value);
        }
    }
    return values;
}

std::string WindowFault(std::size_t window, std::size_t degree, std::size_t order) {
    if (degree > kHighestDegree || order > degree || window <= degree) {
        return "a window of " + PointsInSentence(window) + " does not give derivative " + std::to_string(order) +
               " of a polynomial of degree " + std::to_string(degree) + "; the degree is at most " +
               std::to_string(kHighestDegree) + ", the derivative at most the degree, and the window above it";
    }
    return {};
}

}  // namespace qel
