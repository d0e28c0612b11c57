#include "qellib10/secure/renewal_history.h"

#include "../support/full_disk.h"
#include "../support/test.h"
#include "qellib10/platform/error.h"
#include "qellib10/secure/cabinet_reader.h"
#include "qellib10/secure/renewal_records.h"

namespace {

constexpr const char *kCabinet = "a.hcf", *kRecords = "a.qel";

class Renewals : public testing::Test {
protected:
    Renewals() { folder.Write("a.dat", "data"); }

    qel::RenewalHistory Open() const { return {folder.Name(kCabinet), folder.Name(kRecords)}; }
    void Register(const char* operatorName) const { Open().Register(folder.Name("a.dat"), operatorName, "why"); }
    std::string Operators() const {
        std::string names;
        const qel::RenewalHistory history = Open();
        for (const CHistoryRenewInfo& record : history.Records()) names += std::string(record.GetOperator()) + ';';
        return names;
    }
    // What opening refuses.
    std::string Refusal() const {
        try {
            Open();
        } catch (const qel::DataError& error) {
            return error.what();
        }
        return "";
    }

    const TempFolder folder;
};

}  // namespace

TEST_F(Renewals, EveryVersionHasItsRecord) {
    Register("Mori");
    qel::RenewalHistory history = Open();
    const CHistoryRenewInfo& record = history.Register(folder.Name("a.dat"), "Sato", "blank raised");
    EXPECT_EQ(record.GetFileName(), "a.dat");
    EXPECT_EQ(record.GetComment(), "blank raised");
    EXPECT_EQ(history.Latest(), 2U);
    EXPECT_EQ(history.Records().size(), 2U);
    EXPECT_THROW(Open(), CFileException) << "another object has it open";
    history.TakeOut(1, folder.Name("first"));
    EXPECT_EQ(folder.Read("first"), "data");
    EXPECT_THROW(history.TakeOut(3, folder.Name("first")), qel::DataError);
    EXPECT_THROW(history.Register(folder.Name("none"), "Sato", ""), qel::DataError);
    EXPECT_EQ(history.Records().size(), 2U);
}

TEST_F(Renewals, AVersionWithoutRecordGetsOneThatNamesNobody) {
    Register("Mori");
    const std::string first = folder.Read(kRecords);
    Register("Sato");
    const std::string both = folder.Read(kRecords);
    for (std::size_t size = first.size(); size < both.size(); ++size) {
        folder.Write(kRecords, both.substr(0, size));
        EXPECT_EQ(Operators(), "Mori;;") << size;
    }
    Register("Abe");
    EXPECT_EQ(Operators(), "Mori;;Abe;");
}

TEST_F(Renewals, ARecordThatAPowerCutHasTornIsMended) {
    Register("Mori");
    const std::size_t first = folder.Read(kRecords).size();
    Open().Register(folder.Name("a.dat"), "Sato", std::string(1500, 'x'));
    const std::string both = folder.Read(kRecords);
    for (unsigned torn = 0; torn < 16; ++torn) {  // a bit for each sector
        std::string bytes = both;
        for (std::size_t at = first; at < bytes.size(); ++at)
            if ((torn >> at / 512 & 1) != 0) bytes[at] = '\0';
        folder.Write(kRecords, bytes);
        const std::string operators = Operators();
        EXPECT_TRUE(operators == "Mori;;" || operators == "Mori;Sato;") << torn;
    }
    Register("Abe");
    EXPECT_TRUE(Operators().ends_with(";Abe;"));
}

TEST_F(Renewals, WhatIsDamagedStaysAsItIs) {
    Register("Mori");
    Register("Sato");
    const std::string cabinet = folder.Read(kCabinet), records = folder.Read(kRecords);
    const std::size_t half = records.size() / 2;
    const auto flipped = [](std::string bytes, std::size_t at) {
        bytes[at] = static_cast<char>(bytes[at] ^ 1);
        return bytes;
    };
    for (const auto& [name, bytes, refusal] : Cases<const char*, std::string, const char*>{
             {kRecords, flipped(records, 3), "a.qel: is damaged, or not of this cabinet"},
             {kRecords, flipped(records, half + 3), "a.qel: is damaged, or not of this cabinet"},
             {kRecords, records + "x", "a.qel: is damaged, or not of this cabinet"},
             {kRecords, records + records, "a.qel: is damaged, or not of this cabinet"},
             {kRecords, records.substr(0, half - 1), "a.qel: is damaged, or not of this cabinet"},
             {kCabinet, flipped(cabinet, 30), "a.hcf: cannot be opened: "}}) {
        folder.Write(kCabinet, cabinet);
        folder.Write(kRecords, records);
        folder.Write(name, bytes);
        EXPECT_TRUE(Refusal().starts_with(refusal)) << Refusal();
        EXPECT_EQ(folder.Read(name), bytes);
    }
}

TEST_F(Renewals, ARecordThatDidNotFitIsWrittenLater) {
    folder.Write("a.dat", "");
    const std::string comment(400, 'x');
    const auto registerOnFullDisk = [&] {
        qel::RenewalHistory history = Open();
        EXPECT_THROW(history.Register(folder.Name("a.dat"), "Mori", comment), CFileException);
        history.Register(folder.Name("a.dat"), "Sato", "");
        return testing::Test::HasFailure() ? 1 : 0;
    };
    EXPECT_EQ(OnFullDisk(300, registerOnFullDisk), 0);
    EXPECT_EQ(Operators(), ";Sato;");
}

TEST_F(Renewals, BytesAfterTheLatestVersionAreCounted) {
    Register("Mori");
    folder.Write(kCabinet, folder.Read(kCabinet) + "CVH1");
    const CFile file(folder.Path(kCabinet), CFile::modeRead);
    EXPECT_EQ(qel::CabinetReader(file).BytesAfterLatest(), 4U);
}
