// Promise: the end point of 100,000 noisy readings in less than a second, and not slower than the largest slope of
// cubic fits by GSL around every reading, which knows nothing of strays and doubts.
//   EndPoint/100000:seconds <= 1
//   EndPoint/100000 >= 1 EndPointByGsl/100000
// Promise: a usual curve within 50 ms, in which the search is made again with moved readings.
//   EndPoint/80:seconds <= 0.05
#include <benchmark/benchmark.h>
#include <gsl/gsl_multifit.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <random>

#include "qellib10/curve/end_point.h"

namespace {

constexpr double kStep = 10.2;
constexpr std::size_t kRun = 25;

qel::TitrationCurve Curve(std::size_t count) {
    qel::TitrationCurve curve;
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, 0.003);
    for (std::size_t i = 0; i < count; ++i) {
        const double volume = 20.0 * static_cast<double>(i) / static_cast<double>(count);
        curve.volume.push_back(volume);
        curve.signal.push_back(7 + 3 * std::tanh((volume - kStep) / 0.6) + noise(random));
    }
    return curve;
}

void Check(double volume) {
    if (std::abs(volume - kStep) > 0.2) std::abort();
}

void EndPoint(benchmark::State& state) {
    const qel::TitrationCurve curve = Curve(static_cast<std::size_t>(state.range(0)));
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) Check(qel::FindEndPoint(curve).volume);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    state.counters["seconds"] = passed.count() / static_cast<double>(state.iterations());
}
BENCHMARK(EndPoint)->Arg(80)->Arg(100'000)->Unit(benchmark::kMillisecond);

void EndPointByGsl(benchmark::State& state) {
    const qel::TitrationCurve curve = Curve(static_cast<std::size_t>(state.range(0)));
    gsl_multifit_linear_workspace* const work = gsl_multifit_linear_alloc(kRun, 4);
    gsl_matrix* const powers = gsl_matrix_alloc(kRun, 4);
    gsl_matrix* const covariance = gsl_matrix_alloc(4, 4);
    gsl_vector* const coefficients = gsl_vector_alloc(4);
    for (auto _ : state) {
        double steepest = 0, at = 0;
        for (std::size_t first = 0; first + kRun <= curve.volume.size(); ++first) {
            const double center = curve.volume[first + kRun / 2];
            for (std::size_t i = 0; i < kRun; ++i) {
                for (std::size_t k = 0; k < 4; ++k)
                    gsl_matrix_set(powers, i, k, std::pow(curve.volume[first + i] - center, static_cast<int>(k)));
            }
            const gsl_vector_const_view signals = gsl_vector_const_view_array(&curve.signal[first], kRun);
            double squares = 0;
            gsl_multifit_linear(powers, &signals.vector, coefficients, covariance, &squares, work);
            const double slope = gsl_vector_get(coefficients, 1);
            if (slope > steepest) steepest = slope, at = center;
        }
        benchmark::DoNotOptimize(at);  // noise is often steeper than the step
    }
    gsl_vector_free(coefficients);
    gsl_matrix_free(covariance);
    gsl_matrix_free(powers);
    gsl_multifit_linear_free(work);
}
BENCHMARK(EndPointByGsl)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
