#pragma once

#include <cstddef>

namespace tool {

/// A bar on the standard error output, if that is a terminal; it is removed at the end of the scope.
class Progress {
public:
    explicit Progress(std::size_t all);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    bool IsShown() const noexcept { return m_isTerminal; }
    void Show(std::size_t done) const;

private:
    std::size_t m_all;
    bool m_isTerminal;
};

}  // namespace tool
