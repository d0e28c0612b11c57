#include "qellib10/platform/statistics/deviates.h"

#include <array>
#include <cmath>
#include <numbers>

namespace qel {
namespace {

// The curve exp(-x^2 / 2) is covered by layers of equal area, from the bottom up. Layer i reaches to the right as far
// as edge[i]; up to edge[i + 1] it is below the curve. The lowest one includes the tail from kTail on.
struct Ziggurat {
    static constexpr std::size_t kLayers = 256;
    static constexpr double kTail = 3.6541528853610088;  // for which the last layer ends at x = 0

    std::array<double, kLayers + 1> edge, height;

    Ziggurat() {
        const double tail = std::sqrt(std::numbers::pi / 2.0) * std::erfc(kTail / std::numbers::sqrt2);
        const double area = kTail * HeightAt(kTail) + tail;
        edge[0] = area / HeightAt(kTail);
        edge[1] = kTail;
        for (std::size_t i = 2; i < kLayers; ++i)
            edge[i] = std::sqrt(-2.0 * std::log(area / edge[i - 1] + HeightAt(edge[i - 1])));
        edge[kLayers] = 0.0;
        for (std::size_t i = 0; i <= kLayers; ++i) height[i] = HeightAt(edge[i]);
    }

    static double HeightAt(double x) { return std::exp(-0.5 * x * x); }
};
const Ziggurat kZiggurat;

double TailDeviate(Philox& stream) {
    for (;;) {
        const double beyond = -std::log(stream.Uniform()) / Ziggurat::kTail;
        if (-2.0 * std::log(stream.Uniform()) > beyond * beyond) return Ziggurat::kTail + beyond;
    }
}

// Shape of at least 1/2, scale 1.
double GammaDeviate(Philox& stream, double shape) {
    if (shape < 1.0) return GammaDeviate(stream, shape + 1.0) * std::pow(stream.Uniform(), 1.0 / shape);
    const double d = shape - 1.0 / 3.0, c = 1.0 / std::sqrt(9.0 * d);
    for (;;) {
        const double x = NormalDeviate(stream), root = 1.0 + c * x;
        if (root <= 0.0) continue;
        const double v = root * root * root;
        const double uniform = stream.Uniform();
        if (uniform < 1.0 - 0.0331 * x * x * x * x) return d * v;  // spares most of the logarithms
        if (std::log(uniform) < 0.5 * x * x + d - d * v + d * std::log(v)) return d * v;
    }
}

}  // namespace

double NormalDeviate(Philox& stream) {
    for (;;) {
        const std::uint64_t bits = stream.Next();
        const std::size_t layer = bits & (Ziggurat::kLayers - 1);
        // The other 56 bits: between -1 and 1.
        const double x = static_cast<double>(static_cast<std::int64_t>(bits) >> 8) * 0x1p-55 * kZiggurat.edge[layer];
        if (std::abs(x) < kZiggurat.edge[layer + 1]) [[likely]]
            return x;
        if (layer == 0) return std::copysign(TailDeviate(stream), x);
        const double low = kZiggurat.height[layer], high = kZiggurat.height[layer + 1];
        if (low + stream.Uniform() * (high - low) < Ziggurat::HeightAt(x)) return x;
    }
}

double RectangularDeviate(Philox& stream) { return std::numbers::sqrt3 * (2.0 * stream.Uniform() - 1.0); }

double TriangularDeviate(Philox& stream) {
    const double sum = stream.Uniform() + stream.Uniform();
    return std::numbers::sqrt3 * std::numbers::sqrt2 * (sum - 1.0);
}

double StudentDeviate(Philox& stream, double degreesOfFreedom) {
    const double normal = NormalDeviate(stream);
    return normal / std::sqrt(2.0 * GammaDeviate(stream, 0.5 * degreesOfFreedom) / degreesOfFreedom);
}

}  // namespace qel
