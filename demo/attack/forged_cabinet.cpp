#include "demo/attack/forged_cabinet.h"

#include <cstdint>

#include "demo/result/check_sums.h"
#include "demo/support/failure.h"
#include "demo/support/temporary_file.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

constexpr std::size_t kHeader = 36, kVersionHeader = 20, kGuidAt = 12, kGuidSize = 16;

std::string Number(std::size_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> 8 * i & 0xFF);
    return bytes;
}

std::size_t NumberAt(const std::string& bytes, std::size_t at) {
    std::size_t value = 0;
    for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
    return value;
}

}  // namespace

std::string SumsOf(const std::string& bytes) {
    const TemporaryFile file;
    WriteTextFile(bytes, file.Path());
    const CheckSums sums = CheckSumsOf(file.Path());
    return Number(sums.sum) + Number(sums.crc);
}

ForgedCabinet::ForgedCabinet(const std::string& bytes) {
    if (bytes.size() < kHeader) throw Failure("results.hcf is no whole cabinet");
    guid = bytes.substr(kGuidAt, kGuidSize);
    for (std::size_t at = kHeader; at + kVersionHeader <= bytes.size();) {
        const std::size_t size = NumberAt(bytes, at + 8);
        if (size > bytes.size() - at - kVersionHeader) throw Failure("results.hcf is no whole cabinet");
        versions.push_back(bytes.substr(at + kVersionHeader, size));
        at += kVersionHeader + size;
    }
}

std::string ForgedCabinet::Bytes() const {
    std::string body;
    std::size_t latestAt = 0;
    for (std::size_t i = 0; i < versions.size(); ++i) {
        latestAt = kHeader + body.size();
        body += "CVH1" + Number(i + 1) + Number(versions[i].size()) + SumsOf(versions[i]) + versions[i];
    }
    const std::string header = "HCF1" + Number(latestAt) + Number(versions.size()) + guid;
    return header + SumsOf(header) + body;
}

}  // namespace titration
