#include "qellib10/graph/chart_theme.h"

#include <array>
#include <cmath>

#include "../support/test.h"

namespace {

using Color = std::array<double, 3>;
using Matrix = std::array<Color, 3>;

Color Times(const Matrix& matrix, const Color& color) {
    Color result{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k) result[i] += matrix[i][k] * color[k];
    return result;
}

double Linear(int value) {
    const double share = value / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

// CIE L*a*b* with D65.
Color Lab(const Color& linear) {
    const Color xyz = Times({{{0.4124, 0.3576, 0.1805}, {0.2126, 0.7152, 0.0722}, {0.0193, 0.1192, 0.9505}}}, linear);
    const auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116; };
    const double x = f(xyz[0] / 0.95047), y = f(xyz[1]), z = f(xyz[2] / 1.08883);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

}  // namespace

// As readers with full sight and without one of the three kinds of cones see them: Machado, Oliveira and Fernandes,
// IEEE Trans. Vis. Comput. Graph. 15 (2009) 1291.
TEST(ChartTheme, ColorsAreToldApart) {
    const std::array<Matrix, 4> sights = {
        {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
         {{{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}},
         {{{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}},
         {{{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}}}}};
    for (const qel::ChartTheme& theme : {qel::ChartTheme::Light(), qel::ChartTheme::Dark(), qel::ChartTheme::Print()}) {
        for (const Matrix& sight : sights) {
            std::vector<Color> seen;
            for (const COLORREF color : theme.palette) {
                Color linear =
                    Times(sight, {Linear(GetRValue(color)), Linear(GetGValue(color)), Linear(GetBValue(color))});
                for (double& part : linear) part = std::clamp(part, 0.0, 1.0);
                seen.push_back(Lab(linear));
            }
            for (std::size_t i = 0; i < seen.size(); ++i)
                for (std::size_t k = 0; k < i; ++k)
                    EXPECT_GT(std::hypot(seen[i][0] - seen[k][0], seen[i][1] - seen[k][1], seen[i][2] - seen[k][2]), 12)
                        << "colours " << k + 1 << " and " << i + 1;
        }
    }
}
