#include "qellib10/quantity/trial_statistics.h"

#include <algorithm>
#include <cmath>

namespace qel {
namespace {

// Sorts what intervals can begin and end with: the lowest and the highest results.
void SortTails(std::vector<double>& results, std::size_t tail) {
    if (2 * tail >= results.size()) return std::sort(results.begin(), results.end());
    const auto count = static_cast<std::ptrdiff_t>(tail);
    const auto low = results.begin() + count, high = results.end() - count;
    std::nth_element(results.begin(), low, results.end());
    std::nth_element(low, high, results.end());
    std::sort(results.begin(), low);
    std::sort(high, results.end());
}

// Of the order statistic @p at: by the density there, which is the number of results around it over their width.
double StandardError(const std::vector<double>& results, std::size_t at, std::size_t tail) {
    const auto count = static_cast<double>(results.size());
    const std::size_t fromEnd = std::min(at, results.size() - 1 - at);
    const std::size_t reach = std::clamp<std::size_t>(fromEnd / 4, 1, std::max<std::size_t>(tail / 4, 1));
    const std::size_t first = at >= reach ? at - reach : 0, last = std::min(at + reach, results.size() - 1);
    const double part = (static_cast<double>(fromEnd) + 0.5) / count;
    const double density = static_cast<double>(last - first) / count / (results[last] - results[first]);
    return results[last] > results[first] ? std::sqrt(part * (1.0 - part) / count) / density : 0.0;
}

void TakeMoments(MonteCarloResult& result, const std::vector<double>& results) {
    const auto count = static_cast<double>(results.size());
    const double near = results.front();  // so that no digits are lost where the results differ by little
    double sum = 0.0, squares = 0.0;
    for (const double value : results) sum += value - near;
    const double mean = sum / count;
    for (const double value : results) squares += (value - near - mean) * (value - near - mean);
    result.mean = near + mean;
    result.uncertainty = std::sqrt(squares / (count - 1.0));
}

}  // namespace

std::size_t TrialsWithin(std::size_t trials, double probability) {
    return static_cast<std::size_t>(std::floor(probability * static_cast<double>(trials) + 0.5));
}

MonteCarloResult StatisticsOf(std::vector<double>& results, double probability) {
    MonteCarloResult result;
    result.trials = results.size();
    result.coverageProbability = probability;
    TakeMoments(result, results);
    const std::size_t within = TrialsWithin(results.size(), probability), tail = results.size() - within;
    SortTails(results, tail);
    const std::size_t first = (tail + 1) / 2 - 1;
    result.symmetric = {results[first], results[first + within]};
    result.lowError = StandardError(results, first, tail);
    result.highError = StandardError(results, first + within, tail);
    result.shortest = {results[0], results[within]};
    for (std::size_t i = 1; i < tail; ++i) {
        const auto& [low, high] = result.shortest;
        if (results[i + within] - results[i] < high - low) result.shortest = {results[i], results[i + within]};
    }
    return result;
}

}  // namespace qel
