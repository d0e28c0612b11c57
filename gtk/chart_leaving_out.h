#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "qellib10/gtk/chart_scene.h"

namespace qel {

/// How the user leaves points out and takes them back. Only where the application has allowed it.
class ChartLeavingOut {
public:
    using Changed = std::function<void(std::size_t series)>;
    using AskReason = std::function<std::optional<std::string>(std::size_t count)>;

    explicit ChartLeavingOut(ChartScene& scene) : m_scene(scene) {}

    /// @param changed is called after each change @param ask for a reason, nothing is left out without one; empty: a
    /// dialog
    void Allow(Changed changed, AskReason ask);
    void Forbid();
    bool IsAllowed() const { return static_cast<bool>(m_changed); }
    bool IsOn() const { return m_isOn; }
    void Switch();  ///< whether clicks and boxes leave points out

    void ToggleNear(const ShapePoint& at);
    void ToggleIn(const ChartBox& box);  ///< of all series
    void ToggleAtCursor();

private:
    using Chosen = std::vector<std::pair<std::size_t, std::vector<std::size_t>>>;  // by series

    void Toggle(const Chosen& chosen);

    ChartScene& m_scene;
    Changed m_changed;
    AskReason m_ask;
    bool m_isOn = false;
};

}  // namespace qel
