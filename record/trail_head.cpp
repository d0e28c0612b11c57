#include "qellib10/record/trail_head.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

constexpr std::size_t kPlaceSize = 4096;
constexpr std::size_t kKeyCountAt = 4, kGenerationAt = 8, kNumberAt = 16, kLengthAt = 24, kHashAt = 32, kIdAt = 64,
                      kTailsAt = 80, kTailSizeAt = 88, kTailHashAt = 96, kKeysAt = 128, kSumAt = 4064;
constexpr std::size_t kIdSize = 16, kKeySize = 32;
constexpr std::array kMagic = {std::byte{'Q'}, std::byte{'T'}, std::byte{'H'}, std::byte{'1'}};
static_assert(kKeysAt + TrailHeadState::kMostKeys * kKeySize <= kSumAt);

using Place = std::array<std::byte, kPlaceSize>;

Sha256Digest SumOf(const Place& place) { return Sha256({reinterpret_cast<const char*>(place.data()), kSumAt}); }

template <class Bytes> void Get(const Place& place, std::size_t at, Bytes& to) {
    std::copy_n(place.begin() + static_cast<std::ptrdiff_t>(at), to.size(), to.begin());
}
template <class Bytes> void Put(Place& place, std::size_t at, const Bytes& from) {
    std::ranges::copy(from, place.begin() + static_cast<std::ptrdiff_t>(at));
}

Place Pack(const TrailHeadState& state) {
    assert(state.keys.size() <= TrailHeadState::kMostKeys);
    Place place = {};
    Put(place, 0, kMagic);
    PutNumber(std::span<std::byte>(place), kKeyCountAt, static_cast<std::uint32_t>(state.keys.size()));
    PutNumber(std::span<std::byte>(place), kGenerationAt, state.generation);
    PutNumber(std::span<std::byte>(place), kNumberAt, state.number);
    PutNumber(std::span<std::byte>(place), kLengthAt, state.length);
    Put(place, kHashAt, state.hash);
    Unhex(state.trailId, std::span(place).subspan(kIdAt, kIdSize));
    PutNumber(std::span<std::byte>(place), kTailsAt, state.tailsSetAside);
    PutNumber(std::span<std::byte>(place), kTailSizeAt, state.tailSize);
    Put(place, kTailHashAt, state.tailHash);
    for (std::size_t i = 0; i < state.keys.size(); ++i) Put(place, kKeysAt + i * kKeySize, state.keys[i].bytes);
    Put(place, kSumAt, SumOf(place));
    return place;
}

std::optional<TrailHeadState> Unpack(const Place& place) {
    Sha256Digest sum;
    Get(place, kSumAt, sum);
    if (!std::equal(kMagic.begin(), kMagic.end(), place.begin()) || sum != SumOf(place)) return std::nullopt;
    const std::span<const std::byte> bytes(place);
    TrailHeadState state;
    state.generation = GetNumber<std::uint64_t>(bytes, kGenerationAt);
    state.number = GetNumber<std::uint64_t>(bytes, kNumberAt);
    state.length = GetNumber<std::uint64_t>(bytes, kLengthAt);
    Get(place, kHashAt, state.hash);
    state.trailId = Hex(bytes.subspan(kIdAt, kIdSize));
    state.tailsSetAside = GetNumber<std::uint32_t>(bytes, kTailsAt);
    state.tailSize = GetNumber<std::uint64_t>(bytes, kTailSizeAt);
    Get(place, kTailHashAt, state.tailHash);
    const auto count = GetNumber<std::uint32_t>(bytes, kKeyCountAt);
    if (count > TrailHeadState::kMostKeys) return std::nullopt;
    state.keys.resize(count);
    for (std::size_t i = 0; i < count; ++i) Get(place, kKeysAt + i * kKeySize, state.keys[i].bytes);
    return state;
}

std::uint64_t PlaceOf(std::uint64_t generation) { return generation % 2 * kPlaceSize; }

std::optional<TrailHeadState> LatestOf(std::span<const std::byte> bytes) {
    std::optional<TrailHeadState> latest;
    for (const std::uint64_t at : {PlaceOf(0), PlaceOf(1)}) {
        if (bytes.size() < at + kPlaceSize) continue;
        Place place;
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), kPlaceSize, place.begin());
        const std::optional<TrailHeadState> state = Unpack(place);
        if (state && PlaceOf(state->generation) == at && (!latest || state->generation > latest->generation))
            latest = state;
    }
    return latest;
}

}  // namespace

std::optional<TrailHead> TrailHead::OpenIfThere(const std::string& path, GuardedFile::Use use) {
    std::optional<GuardedFile> file = GuardedFile::OpenIfThere(path, use);
    return file ? std::optional(TrailHead(std::move(*file))) : std::nullopt;
}

void TrailHead::MakeNew(const std::string& path, const TrailHeadState& state) {
    Replacement made(path, 0644);
    WriteFullyAt(made.File(), Pack(state), PlaceOf(state.generation), path);
    WriteFullyAt(made.File(), Place{}, PlaceOf(state.generation + 1), path);
    try {
        made.CommitNew();
    } catch (const CFileException& failure) {
        if (failure.m_lOsError != kFileExists) throw;  // another program was first
    }
}

TrailHeadState TrailHead::Load() const {
    std::optional<TrailHeadState> state = LoadLatest();
    // Whoever reads without the lock may find both places half written, one after the other.
    if (!state) state = LoadLatest();
    if (!state) throw DataError("the head file of the trail is damaged");
    return *state;
}

// The two hashes of a file that has not changed would take as long as the rest of an unflushed append.
std::optional<TrailHeadState> TrailHead::LoadLatest() const {
    std::array<std::byte, 2 * kPlaceSize> places;
    const auto bytes = std::span<const std::byte>(places).first(m_file.ReadAt(places, 0));
    const bool isSame = m_loaded && bytes.size() == m_loadedBytes.size() &&
                        std::memcmp(bytes.data(), m_loadedBytes.data(), bytes.size()) == 0;
    if (!isSame) {
        m_loaded = LatestOf(bytes);
        m_loadedBytes.assign(bytes.begin(), bytes.end());
    }
    return m_loaded;
}

void TrailHead::Store(TrailHeadState& state) const {
    ++state.generation;
    StoreAgain(state);
}

void TrailHead::StoreAgain(const TrailHeadState& state) const {
    m_file.WriteAt(Pack(state), PlaceOf(state.generation));
    m_file.Flush();
}

}  // namespace qel
