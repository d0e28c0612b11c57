#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/record/ssh_signature.h"
#include "qellib10/record/trail_entry.h"

// The lines of a trail's file. docs/formats.md has a description of them.
namespace qel {

inline constexpr std::size_t kLongestLine = 64 * 1024;              // with its line feed
inline constexpr std::int64_t kTrailTimeEnd = 253'402'300'800'000;  // ms: the start of the year 10000
inline constexpr std::string_view kEntryNamespace = "qellib10-entry";

/// The bytes of an entry that are signed: its line without the signature.
/// @throws DataError for an entry that no trail may have: a text that is not UTF-8, a hash in another form, a change
/// without a reason
std::string SignedPart(const TrailEntry& entry);

/// What the line of an entry starts with, up to the comma after its number.
std::string StartOfLine(std::string_view trailId, std::uint64_t number);

/// The line of an entry, without the line feed. @throws DataError when it is too long
std::string LineOf(std::string_view signedPart, const SshSignature& signature);

struct ReadLine {
    TrailEntry entry;
    SshSignature signature;
    std::string signedPart;

    bool IsSigned() const { return IsSignatureOf(signature, kEntryNamespace, signedPart); }
};

/// Takes a line apart, without its line feed. It does not check the signature.
/// @throws DataError for each line that is not, byte for byte, what LineOf would make of its content
ReadLine ReadEntry(std::string_view line);

/// The other direction of TrailTimeText. @throws DataError
std::int64_t ReadTrailTime(std::string_view text);

}  // namespace qel
