#include "../support/soak.h"
#include "qellib10/record/cabinet_records.h"
#include "qellib10/record/file_hash.h"
#include "qellib10/record/file_records.h"
#include "qellib10/record/signature_check.h"
#include "recorded_folder.h"

namespace {

// An archive of a trail, a cabinet of two versions and an exported file.
struct Sample : RecordedFolder {
    Sample() {
        EXPECT_TRUE(Register("35.1 mg/L") && Register("35.4 mg/L", "sato"));
        Write("export", "1;35.1\n2;35.4\n");
        Archive archive(*this);
        qel::TrailRecord record = Record(qel::trail_kind::kExport, "export");
        const auto hash = qel::HashFile(Name("export"));
        record.size = hash->size;
        record.sha256 = hash->sha256;
        EXPECT_TRUE(archive.Open() && archive.trail.Append(record));
    }

    /// Whether anything is wrong, as somebody finds who knows the head.
    bool IsWrong() const {
        const qel::TrailReport report = CheckWithHead();
        if (report.findingCount > 0 || !report.isAnchored) return true;
        const qel::TrailReceipt last{report.entries, report.head};
        qel::CabinetRecords cabinets;
        qel::CabinetRecords::Cabinet cabinet;
        if (cabinets.Read(Name("t"), last) == 0 || cabinets.Compare(Name("c"), cabinet) == 0) return true;
        if (!cabinets.Rest().empty() || std::ranges::any_of(cabinet.versions, &qel::RecordedVersion::IsFinding))
            return true;
        qel::FileRecords files;
        if (files.Read(Name("t"), last) == 0) return true;
        return std::ranges::any_of(files.Compare(Name(".")), [](const qel::RecordedFile& file) {
            return file.state != qel::RecordedFile::State::kRecorded;
        });
    }
};

}  // namespace

TEST(FlippedBits, OfAnArchiveAreAllNoticed) {
    const Sample sample;
    ASSERT_FALSE(sample.IsWrong());
    for (const auto& [name, step] :
         {std::pair("c", 1), std::pair("export", 1), std::pair("t", SoakCount(1) > 1 ? 1 : 29)}) {
        const std::string whole = sample.Read(name);
        std::size_t unnoticed = 0, first = 0;
        for (std::size_t bit = 0; bit < whole.size() * 8; bit += static_cast<std::size_t>(step)) {
            std::string changed = whole;
            changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
            sample.Write(name, changed);
            if (!sample.IsWrong() && unnoticed++ == 0) first = bit;
        }
        EXPECT_EQ(unnoticed, 0) << name << " of " << whole.size() * 8 << ", the first bit " << first;
        sample.Write(name, whole);
    }
    EXPECT_FALSE(sample.IsWrong());
}
