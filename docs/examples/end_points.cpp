// The end point of a measured titration, then of the same curve with a stray reading, and of its first half.
#include <qellib10/core.h>

#include <cstdio>

namespace {

// Silver nitrate into a chloride sample: volumes in mL, potentials in mV.
const qel::TitrationCurve kMeasured{{0,   0.2, 0.4,  0.6,  0.8, 1,    1.2,  1.4, 1.5, 1.6, 1.7, 1.8,
                                     1.9, 2,   2.04, 2.12, 2.2, 2.24, 2.28, 2.3, 2.4, 2.6, 3,   3.2},
                                    {206.8, 206.5, 204.2, 197.8, 194.3, 188.2, 183.5, 177.3, 172,  166.8, 158.4, 149.4,
                                     135.3, 96.9,  79.9,  51.6,  42.9,  37.3,  33.5,  33.7,  24.8, 14.1,  3.3,   -1.8}};

void Show(const char* what, const qel::TitrationCurve& curve) {
    try {
        const qel::EndPoint found = qel::FindEndPoint(curve);
        std::printf("%s: %.4f mL at %.1f mV, noise %.1f mV, %zu left out\n", what, found.volume, found.signal,
                    found.noise, found.strays.size());
    } catch (const qel::DataError& refusal) {
        std::printf("%s: %s\n", what, refusal.what());
    }
}

}  // namespace

int main() {
    Show("measured", kMeasured);

    qel::TitrationCurve stray = kMeasured;
    stray.signal[4] -= 60;
    Show("with a stray", stray);

    qel::TitrationCurve half = kMeasured;
    half.volume.resize(13);
    half.signal.resize(13);
    Show("half of it", half);

    const qel::CurvePoints slope = qel::Differentiate(qel::SmoothByMedian(qel::MergeRepeats(kMeasured)), 5);
    std::printf("slope at %.2f mL: %.0f mV per mL\n", slope.x[13], slope.y[13]);
}
