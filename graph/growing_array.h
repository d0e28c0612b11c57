#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <type_traits>

#include "qellib10/platform/large_memory.h"

namespace qel {

/// An array that grows at its end and never moves what it has, so that one thread may append while others read. How
/// many elements there are is the owner's matter: a reader may read those that it knows to be complete.
///
/// Elements are in pieces, each as large as all pieces before it. So the longest append is an allocation of the system,
/// not a copy, and memory that no element has reached yet is not used.
template <class T> class GrowingArray {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    static constexpr std::size_t kFirst = 1024;  ///< elements of the first piece: pieces begin at multiples of it

    GrowingArray() = default;
    GrowingArray(const GrowingArray&) = delete;
    GrowingArray& operator=(const GrowingArray&) = delete;
    ~GrowingArray() = default;

    const T& operator[](std::size_t i) const noexcept {
        const std::size_t piece = PieceOf(i);
        return m_pieces[piece].get()[i - StartOf(piece)];
    }
    /// The elements from @p i on that are next to each other, at most up to @p end, which is above i.
    std::span<const T> From(std::size_t i, std::size_t end) const noexcept {
        const std::size_t last = StartOf(PieceOf(i) + 1);
        return {&(*this)[i], (last < end ? last : end) - i};
    }
    /// @param i the number of elements so far
    /// @throws std::bad_alloc; nothing is changed then
    void Set(std::size_t i, const T& value) {
        const std::size_t piece = PieceOf(i), start = StartOf(piece);
        if (i == start && m_pieces[piece] == nullptr) m_pieces[piece] = Made(StartOf(piece + 1) - start);
        new (m_pieces[piece].get() + (i - start)) T(value);
    }
    /// Of memory that is reserved, for @p count elements.
    static std::size_t Reserved(std::size_t count) noexcept {
        return count == 0 ? 0 : StartOf(PieceOf(count - 1) + 1) * sizeof(T);
    }

private:
    struct Free {
        void operator()(T* piece) const noexcept { FreeLarge(piece); }
    };
    using Piece = std::unique_ptr<T, Free>;

    static Piece Made(std::size_t count) { return Piece(static_cast<T*>(AllocateLarge(count * sizeof(T)))); }
    static constexpr std::size_t PieceOf(std::size_t i) noexcept {
        return static_cast<std::size_t>(std::bit_width(i / kFirst));
    }
    static constexpr std::size_t StartOf(std::size_t piece) noexcept { return piece == 0 ? 0 : kFirst << (piece - 1); }

    std::array<Piece, 44> m_pieces;  // of more elements than a process can have
};

}  // namespace qel
