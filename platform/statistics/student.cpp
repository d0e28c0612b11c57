#include "qellib10/platform/statistics/student.h"

#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>

namespace qel {
namespace {

namespace policies = boost::math::policies;

// What is out of range gives infinity or NaN, and nothing is thrown.
using Policy =
    policies::policy<policies::domain_error<policies::ignore_error>, policies::pole_error<policies::ignore_error>,
                     policies::overflow_error<policies::ignore_error>,
                     policies::evaluation_error<policies::ignore_error>>;
using Normal = boost::math::normal_distribution<double, Policy>;
using Student = boost::math::students_t_distribution<double, Policy>;

}  // namespace

double StudentDistribution(double t, double degreesOfFreedom) {
    if (std::isnan(t) || !(degreesOfFreedom > 0.0)) return NAN;
    if (std::isinf(t)) return t > 0.0 ? 1.0 : 0.0;
    if (std::isinf(degreesOfFreedom)) return cdf(Normal(), t);
    return cdf(Student(degreesOfFreedom), t);
}

double CoverageFactor(double probability, double degreesOfFreedom) {
    // Many results have the same one, and it takes as long as a formula.
    thread_local struct { double probability = NAN, degreesOfFreedom = NAN, factor = NAN; } last;
    if (!(probability > 0.0 && probability < 1.0) || !(degreesOfFreedom > 0.0)) return NAN;
    if (probability != last.probability || degreesOfFreedom != last.degreesOfFreedom) {
        const double tail = (1.0 - probability) / 2.0;
        const double factor = std::isinf(degreesOfFreedom) ? quantile(complement(Normal(), tail))
                                                           : quantile(complement(Student(degreesOfFreedom), tail));
        last = {probability, degreesOfFreedom, factor};
    }
    return last.factor;
}

}  // namespace qel
