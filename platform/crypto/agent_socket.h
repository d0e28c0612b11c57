#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace qel {

/// Sends @p question to the agent that listens at @p posixPath, and returns its answer. Each is preceded by its length:
/// 4 bytes, big-endian. One connection for one question: an agent that was restarted serves the next.
/// @param limit for all of it, so that an agent that hangs does not hang the caller
/// @throws CFileException when there is no agent, or none that this user may ask; DataError for an answer
/// that is empty or longer than 256 KiB
std::string AskAgent(const std::string& posixPath, std::string_view question, std::chrono::milliseconds limit);

}  // namespace qel
