#pragma once

#include <qellib10/qellib10.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <optional>
#include <random>
#include <thread>
#include <utility>

namespace titrator {

/// A simulated titrator: a burette with 0.1 mol/L sodium hydroxide and an electrode for pH, in 2 mL of vinegar with 50
/// mL of water. It sends a telegram after each dose: STX, the volume in mL in 9 characters, the pH in 8, ETX.
class Instrument {
public:
    static constexpr int kBubble = 14;  ///< the reading that an air bubble disturbs

    /// Titrates in a thread of its own, which calls @p send, with a pause between doses.
    void Start(std::function<void(const CQBinary& telegram)> send, std::chrono::milliseconds pause) {
        m_isTitrating = true;
        m_thread = std::jthread([this, send = std::move(send), pause](const std::stop_token& stop) {
            std::mt19937 random;  // the same each time
            std::normal_distribution<double> noise(0, 0.004);
            double volume = 0, dose = 0.4, before = 0;
            for (int i = 0; volume <= 22 && !stop.stop_requested(); ++i) {
                const double signal = SignalAt(volume);
                send(Telegram(volume, signal + noise(random) + (i == kBubble ? 0.9 : 0)));
                if (i > 0)
                    dose = std::clamp(0.15 * dose / (signal - before), 0.05, 0.4);  // small ones where it is steep
                volume += dose;
                before = signal;
                std::this_thread::sleep_for(pause);
            }
            m_isTitrating = false;
        });
    }
    bool IsTitrating() const { return m_isTitrating; }

    /// @return volume and pH; nothing for a telegram in any other form
    static std::optional<CGraphData> Read(const CQBinary& telegram) {
        if (telegram.GetSize() != 19 || telegram.GetByte(0) != kStx || telegram.GetByte(18) != kEtx) return {};
        const auto volume = qel::ReadNumber(telegram.GetString(1, 9)),
                   signal = qel::ReadNumber(telegram.GetString(10, 8));
        return volume && signal ? std::optional(CGraphData(*volume, *signal)) : std::nullopt;
    }

private:
    static constexpr unsigned char kStx = 0x02, kEtx = 0x03;

    static CQBinary Telegram(double volume, double signal) {
        CQBinary telegram;
        telegram.AddByte(kStx);
        telegram.AddDoubleTopSign(volume, 9, 3, 0);
        telegram.AddDoubleTopSign(signal, 8, 3, 0);
        telegram.AddByte(kEtx);
        return telegram;
    }
    // The pH at which the charges of all ions are balanced.
    static double SignalAt(double volume) {
        const double all = 52 + volume, acid = 2 * 0.833 / all, base = 0.1 * volume / all, ka = 1.75e-5, kw = 1e-14;
        double low = 0, high = 14;
        while (high - low > 1e-6) {
            const double signal = (low + high) / 2, h = std::pow(10, -signal);
            (h + base > kw / h + acid * ka / (ka + h) ? low : high) = signal;
        }
        return low;
    }

    std::atomic<bool> m_isTitrating = false;
    std::jthread m_thread;  // last, so that it ends first
};

}  // namespace titrator
