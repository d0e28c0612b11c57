#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// A bar on the standard error output, if that is a terminal; it is removed at the end of the scope.
class ProgressBar {
public:
    /// @param unit what is counted, in the plural
    explicit ProgressBar(std::size_t all, std::string unit = "files");
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    bool IsShown() const noexcept { return m_isTerminal; }
    void Show(std::size_t done) const;  ///< at most all of them

private:
    std::size_t m_all;
    std::string m_unit;
    bool m_isTerminal;
};

}  // namespace tool
