#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/crypto/digest.h"

// Time stamps of RFC 3161: somebody whom people trust signs that something with this hash existed at a time. All bytes
// are DER. Everything throws DataError with a sentence; libcrypto's list of errors stays as it was.
namespace qel {

inline constexpr std::size_t kLongestStampRequest = 4096;
/// Base64 of it fits into an entry of a trail, with 4 KiB for the rest of its line. Answers have 2 to 8 KiB.
inline constexpr std::size_t kLongestStampAnswer = 46'080;
inline constexpr const char* kStampAnswerTooLong =
    "the answer of the time stamping authority is longer than 46080 bytes";

/// What somebody who wants a stamp sends to the authority.
class StampRequest {
public:
    /// A new one: it has 64 random bits, so that no older answer fits it, and asks for the authority's certificate.
    static StampRequest Make(const Sha256Digest& hash);
    /// One without random bits, to check an answer whose request is not known.
    static StampRequest OfHash(const Sha256Digest& hash);
    /// @throws DataError for everything that is not one for a SHA-256, and for bytes after it
    static StampRequest OfBytes(std::string_view bytes);
    ~StampRequest();
    StampRequest(StampRequest&&) noexcept;

    std::string Bytes() const;
    const Sha256Digest& Hash() const noexcept { return m_hash; }

private:
    friend class StampAuthorities;
    struct State;
    StampRequest(std::unique_ptr<State> state, const Sha256Digest& hash);

    std::unique_ptr<State> m_state;
    Sha256Digest m_hash;
};

/// What the authority has answered. Before StampAuthorities::Require it proves nothing.
class StampAnswer {
public:
    /// @throws DataError for a refusal, a stamp for another kind of hash than SHA-256, a time that is not UTC or out of
    /// range, and bytes after it
    explicit StampAnswer(std::string_view bytes);
    ~StampAnswer();
    StampAnswer(StampAnswer&&) noexcept;

    const Sha256Digest& Hash() const noexcept { return m_hash; }
    /// ms since 1970 in UTC, from 0 to the end of the year 9999.
    std::int64_t Time() const noexcept { return m_time; }
    /// So many ms earlier or later it may have been; 0 where the authority does not say.
    std::int64_t Accuracy() const noexcept { return m_accuracy; }

private:
    friend class StampAuthorities;
    struct State;

    std::unique_ptr<State> m_state;
    Sha256Digest m_hash = {};
    std::int64_t m_time = 0, m_accuracy = 0;
};

/// Whose stamps are believed.
class StampAuthorities {
public:
    /// @param pem certificates between BEGIN and END lines: the roots, and others that lead to them
    explicit StampAuthorities(std::string_view pem);
    ~StampAuthorities();
    StampAuthorities(StampAuthorities&&) noexcept;
    StampAuthorities& operator=(StampAuthorities&&) noexcept;

    /// Returns when @p answer is one for @p request, and signed by a certificate for time stamps alone that leads to
    /// one of the roots. All of them must have been valid at the time of the stamp; whether one was withdrawn is not
    /// asked.
    void Require(const StampAnswer& answer, const StampRequest& request) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
