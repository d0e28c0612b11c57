#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

/// A titration curve as chance makes one: rising or falling, sharp or flat, with even steps or with those of a burette
/// that doses by the slope, with noise of up to 0.05, up to three places with one to three stray readings each, and
/// readings that wait at the last volume. One of ten begins past its step or ends before it.
///
/// A stray is seen where a reading at one of its ends goes back clearly. The others are hidden: they lie along the
/// curve's direction, or hardly leave its noise, so that the curve could have been measured just so.
struct MadeCurve {
    std::vector<double> volume, clean, measured;
    double step = 0;  // where the curve is steepest
    bool hasStep = true, hasStrays = false, hasHiddenStrays = false;
};

enum class MadeStrays { seen, any };

class CurveMaker {
public:
    explicit CurveMaker(unsigned seed, MadeStrays strays = MadeStrays::seen) : m_random(seed), m_strays(strays) {}

    MadeCurve Make() {
        MadeCurve made;
        made.step = Between(5, 20);
        m_direction = OneOf(2) ? 1 : -1;
        m_isSigmoid = OneOf(2);
        m_width = made.step * (m_isSigmoid ? Spread(0.003, 0.03) : 1 / Spread(30, 3000));
        double first = 0, last = made.step * Between(1.15, 1.8);
        const int cut = Whole(0, 19);
        if (cut == 0) first = made.step * 1.03;
        if (cut == 1) last = made.step * 0.97;
        made.hasStep = cut > 1;
        AddVolumes(made, first, last);
        if (OneOf(4)) made.volume.insert(made.volume.end(), static_cast<std::size_t>(Whole(1, 20)), made.volume.back());
        for (const double volume : made.volume) made.clean.push_back(Signal(volume, made.step));
        made.measured = made.clean;
        const double noise = OneOf(5) ? 0 : Spread(0.001, 0.05);
        AddStrays(made, noise);
        std::normal_distribution<double> error;
        for (double& signal : made.measured) signal += noise * error(m_random);
        return made;
    }

private:
    double Between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(m_random); }
    double Spread(double low, double high) { return std::exp(Between(std::log(low), std::log(high))); }
    int Whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    bool OneOf(int many) { return Whole(1, many) == 1; }

    double Signal(double volume, double step) const {
        const double t = (volume - step) / m_width, relative = (volume - step) / step;
        return 7 + m_direction * (m_isSigmoid ? 3 * std::tanh(t) + 0.8 * relative : 0.65 * std::asinh(t));
    }

    void AddVolumes(MadeCurve& made, double first, double last) {
        const bool isBySlope = OneOf(2);
        const double even = (last - first) / Whole(20, 120), rise = Between(0.1, 0.6);
        const double least = made.step * Between(0.001, 0.01), most = made.step * Between(0.03, 0.08);
        for (double volume = first; volume <= last;) {
            made.volume.push_back(volume);
            double dose = isBySlope ? most : even;
            const auto risen = [&] { return std::abs(Signal(volume + dose, made.step) - Signal(volume, made.step)); };
            while (isBySlope && dose > least && risen() > rise) dose = std::max(least, dose * 0.7);
            volume += dose * Between(0.7, 1.3);
        }
    }

    void AddStrays(MadeCurve& made, double noise) {
        const int size = static_cast<int>(made.measured.size());
        std::vector<bool> taken(made.measured.size());
        for (int left = Whole(0, 3); left > 0 && size > 0;) {
            const int length = Whole(1, std::min(3, size)), at = Whole(0, size - length);
            const double height = (OneOf(2) ? 1 : -1) * Between(0.3, 5);
            std::vector<double> spoilt = made.measured;
            for (int i = at; i < at + length; ++i) spoilt[static_cast<std::size_t>(i)] += height * Between(0.95, 1.05);
            const auto back = [&](int i) {
                if (i < 1 || i >= size) return 0.0;
                return -m_direction * (spoilt[static_cast<std::size_t>(i)] - spoilt[static_cast<std::size_t>(i) - 1]);
            };
            const int from = std::max(0, at - 4), to = std::min(size, at + length + 4);
            const bool isFree = std::find(taken.begin() + from, taken.begin() + to, true) == taken.begin() + to;
            const bool canBeSeen = std::max(back(at), back(at + length)) > 0.1 + 10 * noise;
            if (OneOf(50)) --left;  // a short curve has no more places
            if (!isFree || (!canBeSeen && m_strays == MadeStrays::seen)) continue;
            made.measured = spoilt;
            made.hasStrays = true;
            made.hasHiddenStrays = made.hasHiddenStrays || !canBeSeen;
            std::fill(taken.begin() + at, taken.begin() + at + length, true);
            --left;
        }
    }

    std::mt19937 m_random;
    MadeStrays m_strays;
    double m_direction = 1, m_width = 1;
    bool m_isSigmoid = false;
};
