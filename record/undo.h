#pragma once

#include <utility>

namespace qel {

/// Its destructor calls back unless Keep was called.
/// @tparam Callback throws nothing
template <class Callback> class Undo {
public:
    explicit Undo(Callback callback) : m_callback(std::move(callback)) {}
    ~Undo() {
        if (!m_isDone) m_callback();
    }
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;
    void Keep() noexcept { m_isDone = true; }

private:
    Callback m_callback;
    bool m_isDone = false;
};

}  // namespace qel
