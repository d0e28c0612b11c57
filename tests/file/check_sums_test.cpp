#include "qellib10/file/check_sums.h"

#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "qellib10/file/check_sums_vector.h"
#include "qellib10/file/crc32_bzip2.h"

#include "../support/line.h"

namespace {

using Bytes = std::span<const unsigned char>;

struct Form {
    const char* name;
    bool runs, hasCrc, hasSum;
    void (*add)(qel::RunningSums&, Bytes);
};

// Every form, compared with the byte table and a plain addition where this processor runs it.
std::vector<Form> Forms() {
    const bool folds = qel::HasCarrylessMultiply();
    const bool foldsWide = qel::HasWideCarrylessMultiply();
    const bool foldsWidest = qel::HasWidestCarrylessMultiply();
    return {{"slices", true, true, false, [](auto& s, Bytes b) { s.crc = qel::CrcBySlices(s.crc, b); }},
            {"sum", foldsWide, false, true, [](auto& s, Bytes b) { s.sum = qel::SumByVector(s.sum, b); }},
            {"folding", folds, true, false, qel::CrcByFolding},
            {"folding with sum", folds, true, true, qel::CrcAndSumByFolding},
            {"wide", foldsWide, true, false, qel::CrcByWideFolding},
            {"wide with sum", foldsWide, true, true, qel::CrcAndSumByWideFolding},
            {"widest", foldsWidest, true, false, qel::CrcByWidestFolding},
            {"widest with sum", foldsWidest, true, true, qel::CrcAndSumByWidestFolding}};
}

std::vector<unsigned char> RandomBytes(std::size_t count) {
    std::mt19937 random(7);
    std::vector<unsigned char> bytes(count);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
}

}  // namespace

TEST(CheckSums, EveryFormGivesTheSumsOfThePlainOneAtEveryLength) {
    constexpr qel::RunningSums kBefore{0x12345678, 0xFFFFFF00};
    const std::vector<unsigned char> all = RandomBytes(3000);
    for (const Form& form : Forms()) {
        for (std::size_t length = 0; form.runs && length < all.size() - 64; length += length < 1300 ? 1 : 37) {
            const std::vector<unsigned char> exact(all.begin() + length % 64, all.begin() + length % 64 + length);
            const auto crc = form.hasCrc ? qel::CrcByByte(kBefore.crc, exact) : kBefore.crc;
            const auto sum = form.hasSum ? std::accumulate(exact.begin(), exact.end(), kBefore.sum) : kBefore.sum;
            qel::RunningSums sums = kBefore;
            form.add(sums, exact);
            ASSERT_EQ(Line({sums.crc, sums.sum}), Line({crc, sum})) << form.name << ", " << length << " bytes";
        }
    }
}

TEST(CheckSums, PiecesGiveTheSumsOfTheWhole) {
    const std::vector<unsigned char> all = RandomBytes(100'000);
    qel::CheckSums whole, pieces, crc(qel::CheckSums::kCrc), sum(qel::CheckSums::kSum);
    whole.Add(all);
    for (Bytes rest = all; !rest.empty();) {
        const Bytes piece = rest.first(std::min<std::size_t>(rest.size(), 1 + rest.size() % 4093));
        for (qel::CheckSums* sums : {&pieces, &crc, &sum}) sums->Add(piece);
        rest = rest.subspan(piece.size());
    }
    EXPECT_EQ(whole.Crc(), qel::FinishedCrc(qel::CrcByByte(qel::kCrcStart, all)));
    for (const auto* sums : {&pieces, &crc}) EXPECT_EQ(sums->Crc(), whole.Crc());
    for (const auto* sums : {&pieces, &sum}) EXPECT_EQ(sums->Sum(), whole.Sum());
}
