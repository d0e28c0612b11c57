#pragma once

#include <cstddef>

namespace tool {

/// A bar on the standard error output, if that is a terminal; it is removed at the end of the scope.
class ProgressBar {
public:
    explicit ProgressBar(std::size_t all);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    bool IsShown() const noexcept { return m_isTerminal; }
    void Show(std::size_t done) const;

private:
    std::size_t m_all;
    bool m_isTerminal;
};

}  // namespace tool
