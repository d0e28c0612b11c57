#include "qellib10/secure/cabinet_salvage.h"

#include <functional>
#include <map>

#include "../support/cases.h"
#include "../support/test.h"
#include "cabinet_folder.h"
#include "qellib10/platform/storage/file_operations.h"

namespace {

using State = qel::CabinetPiece::State;

class Salvage : public CabinetFolder {
public:
    // A cabinet with these versions, and where they start; the last offset is the file's length.
    std::string Made(const std::vector<std::string>& versions) {
        CHistoryCabinetFile cabinet;
        EXPECT_EQ(cabinet.Create(path), 1);
        m_starts = {36};
        for (const std::string& data : versions) {
            EXPECT_EQ(Register(cabinet, data), 1);
            m_starts.push_back(m_starts.back() + 20 + data.size());
        }
        m_guid = cabinet.GetGUID();
        cabinet.Close();
        return folder.Read("cabinet");
    }

    // Such as "1 2? 3x 4..5-": whole, unplaced, changed, lost; a cut one has "<", a rest is "rest". The data of the
    // first two are in `m_data`.
    std::string Found(const std::string& bytes) {
        folder.Write("damaged", bytes);
        m_data.clear();
        const CFile file(folder.Path("damaged"), CFile::modeRead | CFile::shareDenyWrite);
        qel::CabinetSalvage salvage(file);
        std::string line;
        while (const auto piece = salvage.Next()) {
            if (!line.empty()) line += ' ';
            line += piece->state == State::kRest ? "rest" : std::to_string(piece->number);
            if (piece->lastNumber != piece->number) line += ".." + std::to_string(piece->lastNumber);
            line += std::array{"", "?", "x", "<", "-", ""}[static_cast<std::size_t>(piece->state)];
            if (!piece->HasData()) continue;
            CFile target(folder.Path("target"), CFile::modeCreate | CFile::modeWrite);
            EXPECT_TRUE(salvage.CopyData(*piece, target.WritableDescriptor(), "target"));
            target.Close();
            m_data.emplace(piece->number, folder.Read("target"));
        }
        m_found = salvage.Guid();
        EXPECT_EQ(folder.Read("damaged"), bytes);
        return line;
    }

    std::vector<std::size_t> m_starts;
    std::map<DWORD, std::string> m_data;
    CGuid m_guid;
    std::optional<CGuid> m_found;
};

std::string Zeroed(std::string bytes, std::size_t at, std::size_t count) {
    return bytes.replace(at, count, count, '\0');
}

}  // namespace

// A version that is a cabinet has versions of the same numbers, which must never be taken for those of the outer one.
TEST_F(Salvage, NoFlippedBitCostsAnotherVersionOrMakesAWrongOne) {
    const std::string nested = Made({"one", "two", "three", "four"});
    const std::vector<std::string> versions = {nested, "", "second", nested, "last"};
    const std::string intact = Made(versions);
    ASSERT_EQ(Found(intact), "1 2 3 4 5");
    for (std::size_t bit = 0; bit < intact.size() * 8; ++bit) {
        SCOPED_TRACE("byte " + std::to_string(bit / 8) + ", bit " + std::to_string(bit % 8));
        std::string bytes = intact;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
        const std::string found = Found(bytes);
        ASSERT_EQ(found.find('?'), std::string::npos) << found;
        for (DWORD version = 1; version <= 5; ++version) {
            const bool isHit = bit / 8 >= m_starts[version - 1] && bit / 8 < m_starts[version];
            ASSERT_TRUE(isHit || m_data.contains(version)) << version << ": " << found;
            ASSERT_EQ(m_data.contains(version) ? m_data[version] : versions[version - 1], versions[version - 1])
                << found;
        }
        ASSERT_LE(m_data.size(), 5U);
        const bool isOfGuid = bit / 8 >= 12 && bit / 8 < 28;
        ASSERT_EQ(m_found.has_value(), !isOfGuid);
        ASSERT_TRUE(!m_found || *m_found == m_guid);
    }
}

TEST_F(Salvage, FindsWhatOtherDamagesHaveLeft) {
    const std::string nested = Made({"one", "two", "three", "four"});
    const std::string bytes = Made({"first", "second", nested, "fourth", "fifth"});
    const std::vector<std::size_t> at = m_starts;
    const auto zeroed = [&](std::vector<int> headers) {  // 0: the cabinet's
        std::string damaged = bytes;
        for (const int header : headers)
            damaged = header == 0 ? Zeroed(damaged, 0, 36) : Zeroed(damaged, at[header - 1], 20);
        return damaged;
    };
    std::string otherSum = bytes;
    otherSum[at[1] + 12] ^= 1;
    for (const auto& [what, damaged, found] : Cases<const char*, std::string, const char*>{
             {"empty", "", ""},
             {"something else", std::string(100'000, 'x'), "1..0-"},
             {"header of the cabinet", zeroed({0}), "1 2 3 4 5"},
             {"header of version 1", zeroed({1}), "1- 2 3 4 5"},
             {"header of version 3, a cabinet", zeroed({3}), "1 2 3- 4 5"},
             {"header of version 5", zeroed({5}), "1 2 3 4 5-"},
             {"two headers", zeroed({2, 4}), "1 2..0- 3? 2..0- 5"},
             {"header and that of a version", zeroed({0, 3}), "1 2 3..0- 4? 5?"},
             {"from one header into the next", Zeroed(bytes, at[1], at[3] - at[1]), "1 2..3- 4 5"},
             {"data and a header", Zeroed(zeroed({3}), at[3] + 20, 1), "1 2 3- 4x 5"},
             {"a sum", otherSum, "1 2x 3 4 5"},
             {"cut in a header", bytes.substr(0, at[3] + 7), "1 2 3 4< 5-"},
             {"cut in the data", bytes.substr(0, at[3] + 22), "1 2 3 4< 5-"},
             {"cut between", bytes.substr(0, at[3]), "1 2 3 4..5-"},
             {"cut without a header", zeroed({0}).substr(0, at[3] + 22), "1 2 3 4<"},
             {"a rest", bytes + "CVH1" + std::string(40, 'x'), "1 2 3 4 5 rest"},
             {"bytes before", "before" + bytes, "1..0- 1? 2? 3? 4? 5?"},
             {"bytes removed", bytes.substr(0, at[1] + 22) + bytes.substr(at[1] + 24), "1 2..0- 3? 4? 5?"},
             {"bytes added", bytes.substr(0, at[1] + 22) + "new" + bytes.substr(at[1] + 22), "1 2..0- 3? 4? 5?"},
             {"a version removed", bytes.substr(0, at[1]) + bytes.substr(at[2]), "1 3? 4? 5? 2..5-"},
         })
        EXPECT_EQ(Found(damaged), found) << what;
}

// Each tag promises data up to the end, and none has any: to check them all would take the square of the length.
TEST_F(Salvage, AFileMadeOfHeadersTakesNoLongerThanAnother) {
    std::string bytes(36, '\0');
    for (DWORD left = 200'000; left > 0; --left) {
        const DWORD size = 20 * (left - 1);
        bytes +=
            "CVH1" + std::string("\7\0\0\0", 4) + std::string(reinterpret_cast<const char*>(&size), 4) + "12345678";
    }
    EXPECT_EQ(Found(bytes), "1..0-");
}

TEST_F(Salvage, ANewCabinetHasTheVersionsBeforeTheFirstThatIsLost) {
    const std::string bytes = Made({"first", "second", "third"});
    for (const auto& [damagedAt, versions, isOwn] :
         Cases<std::size_t, const char*, bool>{{0, "3, first second third", true},
                                               {13, "3, first second third", false},
                                               {m_starts[2] + 20, "2, first second none", true},
                                               {m_starts[0] + 20, "0, none none none", false}}) {
        std::string damaged = bytes;
        damaged[damagedAt] ^= 1;
        folder.Write("damaged", damaged);
        const CFile file(folder.Path("damaged"), CFile::modeRead | CFile::shareDenyWrite);
        qel::CabinetSalvage salvage(file);
        qel::SalvagedCabinet made(folder.Path("new").View());
        while (const auto piece = salvage.Next()) made.Add(salvage, *piece);
        made.Commit(salvage.Guid().value_or(CGuid()));
        CHistoryCabinetFile cabinet;
        cabinet.Open(folder.Path("new"), 0);
        EXPECT_EQ(std::to_string(made.Versions()) + ", " +
                      Line({Version(cabinet, 1), Version(cabinet, 2), Version(cabinet, 3)}),
                  versions);
        EXPECT_EQ(folder.Has("new") && cabinet.GetGUID() == m_guid, isOwn);
        cabinet.Close();
        std::filesystem::remove(folder.Posix("new"));
    }
}
