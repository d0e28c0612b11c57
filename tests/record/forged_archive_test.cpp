#include <map>

#include "../support/output_of.h"
#include "../support/soak.h"
#include "forged_trail.h"
#include "qellib10/file/check_sums.h"
#include "qellib10/record/cabinet_records.h"
#include "qellib10/record/file_hash.h"
#include "qellib10/record/file_records.h"
#include "qellib10/record/signature_check.h"
#include "qellib10/secure/cabinet_reader.h"
#include "qellib10/secure/history_cabinet_format.h"
#include "qellib10/secure/renewal_records.h"
#include "recorded_folder.h"

namespace {

using Files = std::map<std::string, std::string>;  // name, bytes

// Names that may be added: a copy of the cabinet, and a trail of somebody else.
constexpr const char* kAdded[] = {"c2", "x"};

// An archive of a trail, a cabinet with its renewal records, an exported and a sealed file, and what it was after each
// step.
struct Sample : RecordedFolder {
    Sample() {
        EXPECT_TRUE(Register("35.1 mg/L"));
        Keep();
        Write("export", "1;35.1\n");
        Report(qel::trail_kind::kExport, "export");
        EXPECT_TRUE(Register("35.4 mg/L", "sato"));
        Keep();
        Write("sealed", "volume 12.34 mL");
        EXPECT_EQ(OutputOf("cd '" + Posix().native() + "' && " QELLIB10_QEL " seal sealed 2>&1 >/dev/null"), "");
        Report(qel::trail_kind::kFileSealed, "sealed");
        Keep();
        Write("export", "1;35.1\n2;35.4\n");
        Report(qel::trail_kind::kExport, "export");
        Keep();
    }

    const Files& Now() const { return m_states.back(); }
    const Files& Older(Random& random) const { return m_states[Below(random, m_states.size() - 1)]; }

    void Put(const Files& files) const {
        for (const auto& [name, bytes] : Now()) {
            const auto found = files.find(name);
            if (found != files.end()) {
                Write(name, found->second);
            } else {
                std::filesystem::remove(Posix(name));
            }
        }
        for (const char* const name : kAdded) {
            std::filesystem::remove(Posix(name));
            if (files.contains(name)) Write(name, files.at(name));
        }
    }

    /// What the tool finds, which looks for everything by itself.
    int StatusOfTool() const {
        const std::string verify = "cd '" + Posix().native() + "' && " QELLIB10_QEL " verify . --head-file h -j1";
        return std::stoi(OutputOf(verify + " >/dev/null 2>&1; echo $?"));
    }

    /// Whether anything is wrong, as somebody finds who knows the head.
    bool IsWrong() const {
        if (!Has("t")) return true;
        const qel::TrailReport report = CheckWithHead();
        if (report.findingCount > 0 || !report.isAnchored) return true;
        const qel::TrailReceipt last{report.entries, report.head};
        qel::CabinetRecords cabinets;
        if (cabinets.Read(Name("t"), last) == 0 || IsRenewalWrong(cabinets.All())) return true;
        const bool isUnfinished = cabinets.IsUnfinished();
        for (const char* const name : {"c", "c2"}) {
            qel::CabinetRecords::Cabinet cabinet;
            if (!Has(name)) continue;
            if (cabinets.Compare(Name(name), cabinet) == 0) return true;
            if (std::ranges::any_of(cabinet.versions, &qel::RecordedVersion::IsFinding)) return true;
            if (!isUnfinished && BytesAfter(name) > 0) return true;
        }
        if (!cabinets.Rest().empty()) return true;
        qel::FileRecords files;
        if (files.Read(Name("t"), last) == 0) return true;
        return std::ranges::any_of(files.Compare(Name(".")), [](const qel::RecordedFile& file) {
            return file.state != qel::RecordedFile::State::kRecorded;
        });
    }

private:
    ULONGLONG BytesAfter(const char* name) const {
        const CFile file(Path(name), CFile::modeRead | CFile::shareDenyNone);
        return qel::CabinetReader(file).BytesAfterLatest();
    }
    // What the records say besides their times. They may be missing: the trail has all of it.
    bool IsRenewalWrong(const std::vector<qel::CabinetRecords::Cabinet>& cabinets) const {
        if (!Has("r")) return false;
        CFile file(Path("r"), CFile::modeRead | CFile::shareDenyNone);
        const std::vector<CHistoryRenewInfo> records = qel::ReadRenewalRecords(file).whole;
        const auto& versions = cabinets.at(0).versions;
        return !std::ranges::equal(records, versions, [](const CHistoryRenewInfo& record, const auto& version) {
            return record.GetOperator() == version.user.c_str() && record.GetFileName() == version.file.c_str() &&
                   record.GetComment() == version.reason.c_str();
        });
    }
    void Report(std::string_view action, const char* object) const {
        Archive archive(*this);
        qel::TrailRecord record = Record(action, object);
        const auto hash = qel::HashFile(Name(object));
        record.size = hash->size;
        record.sha256 = hash->sha256;
        EXPECT_TRUE(archive.Open() && archive.trail.Append(record));
    }
    void Keep() {
        Files& files = m_states.emplace_back();
        for (const char* const name : {"t", "c", "r", "export", "sealed"})
            if (Has(name)) files[name] = Read(name);
    }

    std::vector<Files> m_states;
};

std::string Number(std::size_t value) {
    std::string bytes;
    for (int i = 0; i < 32; i += 8) bytes += static_cast<char>(value >> i & 0xFF);
    return bytes;
}
std::size_t NumberAt(const std::string& bytes, std::size_t at) {
    std::size_t value = 0;
    for (std::size_t i = 4; i > 0; --i) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i - 1));
    return value;
}
qel::CheckSums SumsOf(const std::string& bytes) {
    qel::CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    return sums;
}

// A change of the versions in a cabinet, with all checksums right.
void ChangeCabinet(std::string& cabinet, Random& random) {
    std::vector<std::string> versions;
    for (std::size_t at = qel::kCabinetHeaderSize, size = 0; at < cabinet.size(); at += size) {
        size = qel::kVersionHeaderSize + NumberAt(cabinet, at + 8);
        versions.push_back(cabinet.substr(at + qel::kVersionHeaderSize, size - qel::kVersionHeaderSize));
    }
    const auto any = [&] { return versions.begin() + static_cast<std::ptrdiff_t>(Below(random, versions.size())); };
    std::string guid = cabinet.substr(12, 16);
    switch (Below(random, 6)) {
        case 0:
            ChangeByte(*any(), random);
            break;
        case 1:
            versions.erase(any());
            break;
        case 2:
            std::iter_swap(any(), any());
            break;
        case 3:
            versions.insert(any(), "35.3 mg/L");
            break;
        case 4:
            versions.push_back(*any());
            break;
        default:
            guid[Below(random, guid.size())] ^= 1;
    }
    std::string body;
    std::size_t latest = 0;
    for (std::size_t i = 0; i < versions.size(); ++i) {
        const qel::CheckSums sums = SumsOf(versions[i]);
        latest = qel::kCabinetHeaderSize + body.size();
        body += "CVH1" + Number(i + 1) + Number(versions[i].size()) + Number(sums.Sum()) + Number(sums.Crc());
        body += versions[i];
    }
    const std::string header = "HCF1" + Number(latest) + Number(versions.size()) + guid;
    cabinet = header + Number(SumsOf(header).Sum()) + Number(SumsOf(header).Crc()) + body;
}

// A change of a sealed file's content or seal, sealed again.
void ChangeSealed(std::string& sealed, Random& random) {
    const std::string length = sealed.substr(sealed.size() - 4);
    sealed.resize(sealed.size() - 12);
    ChangeByte(sealed, random);
    const std::string crc = Number(SumsOf(sealed).Crc());
    sealed += crc + Number(SumsOf(sealed).Sum()) + length;
}

// Another person, file or reason in a record, or no last record.
void ChangeRenewals(std::string& records, Random& random) {
    constexpr const char* kTexts[] = {"mori", "sato", "why"};
    const std::size_t which = Below(random, std::size(kTexts) + 1);
    if (which == std::size(kTexts)) {
        records.resize(records.size() / 2);
    } else {
        const std::size_t at = records.find(kTexts[which]);
        records[at + Below(random, 3)] ^= 1;
    }
}

// A change of the export, and a trail of somebody else that has recorded it so.
void AddTrail(Files& files, Random& random) {
    ChangeByte(files.at("export"), random);
    Lines lines = LinesOf(files.at("t"));
    const bool isOther = Below(random, 2) == 0;
    SignAgain(lines, 0, 2, [](auto&) {});
    for (std::size_t i = 0; i < lines.size(); ++i) {
        SignAgain(lines, i, 2, [&](auto& entry) {
            if (isOther) entry.trailId = std::string(32, '0');
            if (entry.action != qel::trail_kind::kExport) return;
            entry.size = files.at("export").size();
            entry.sha256 = HashOf(files.at("export"));
        });
    }
    files["x"] = Joined(lines);
}

void ChangeArchive(const Sample& sample, Files& files, Random& random) {
    const auto any = [&] { return std::next(files.begin(), static_cast<std::ptrdiff_t>(Below(random, files.size()))); };
    switch (Below(random, 11)) {
        case 0:
            ChangeCabinet(files.at("c"), random);
            break;
        case 1:
            ChangeSealed(files.at("sealed"), random);
            break;
        case 2:
            ChangeByte(files.at("export"), random);
            break;
        case 3:
            files = sample.Older(random);
            break;
        case 4: {
            const Files& older = sample.Older(random);
            const std::string name = any()->first;
            files.erase(name);
            if (older.contains(name)) files[name] = older.at(name);
            break;
        }
        case 5:
            std::swap(any()->second, any()->second);
            break;
        case 6:
            ChangeRenewals(files.at("r"), random);
            break;
        case 7:
            files["c2"] = files.at("c");
            break;
        case 8:
            AddTrail(files, random);
            break;
        default: {
            Lines lines = LinesOf(files.at("t"));
            ChangeTrail(lines, random);
            files["t"] = Joined(lines);
        }
    }
}

}  // namespace

TEST(ForgedArchive, FlippedBitsAreAllNoticed) {
    const Sample sample;
    ASSERT_FALSE(sample.IsWrong());
    for (const auto& [name, whole] : sample.Now()) {
        if (name == "r") continue;  // its times are those of another clock, and no entry has them
        const std::size_t step = name == "t" && SoakCount(1) == 1 ? 29 : 1;
        std::size_t unnoticed = 0, first = 0;
        for (std::size_t bit = 0; bit < whole.size() * 8; bit += step) {
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

TEST(ForgedArchive, IsNotAcceptedWhereTheHeadIsKnown) {
    const Sample sample;
    ASSERT_FALSE(sample.IsWrong());
    ASSERT_EQ(sample.StatusOfTool(), 0);
    Random random(SoakSeed());
    const int count = SoakCount(1000);
    Tried("forged archives", count);
    for (int i = 0; i < count; ++i) {
        Files files = sample.Now();
        while (files == sample.Now()) ChangeArchive(sample, files, random);
        sample.Put(files);
        const bool isForTool = i % 50 == 0;
        if (sample.IsWrong() && (!isForTool || sample.StatusOfTool() != 0)) continue;
        for (const auto& [name, bytes] : files) {
            if (!sample.Now().contains(name) || bytes != sample.Now().at(name))
                ADD_FAILURE() << name << " in change " << i << ":\n" << bytes;
        }
        FAIL() << files.size() << " files";
    }
}
