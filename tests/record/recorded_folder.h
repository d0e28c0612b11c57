#pragma once

#include "qellib10/record/recorded_cabinet.h"
#include "qellib10/secure/history_cabinet_file.h"
#include "trail_folder.h"

/// A folder with a trail, and with a cabinet "c" and its renewal records "r".
template <class Folder> class WithCabinet : public WithTrail<Folder> {
public:
    struct Archive {
        explicit Archive(const WithCabinet& in, qel::TrailFlush flush = qel::TrailFlush::kEach,
                         std::shared_ptr<qel::Signer> signer = std::make_shared<ByteSigner>(1))
            : trail(in.Settings(flush), std::move(signer)), cabinet(trail, in.Places()) {}
        bool Open() { return trail.Open() != 0 && cabinet.Open() != 0; }

        qel::Trail trail;
        qel::RecordedCabinet cabinet;
    };

    qel::RecordedCabinetSettings Places() const {
        return {.cabinetPath = this->Name("c"), .recordPath = this->Name("r")};
    }
    bool Register(const std::string& bytes, const char* user = "mori") const {
        Archive archive(*this);
        return archive.Open() && RegisterIn(archive, bytes, user);
    }
    bool RegisterIn(Archive& archive, const std::string& bytes, const char* user = "mori") const {
        this->Write("a", bytes);
        return archive.cabinet.Register(this->Name("a"), user, "why").has_value();
    }
    /// As somebody who writes to the cabinet without an entry.
    void Add(const std::string& bytes) const {
        this->Write("b", bytes);
        CHistoryCabinetFile cabinet;
        EXPECT_TRUE(cabinet.Open(this->Path("c"), 0) != 0 && cabinet.RegistNewVersion(this->Path("b")) != 0);
    }
    /// As a program that was killed after the entry of "abe" that starts to register @p bytes.
    void Start(std::uint64_t version, const char* bytes) const {
        Archive archive(*this);
        ASSERT_TRUE(archive.Open());
        qel::TrailRecord record = Record(qel::trail_kind::kRegistering, "a");
        record.user = "abe";
        record.reason = "his";
        record.cabinet = archive.cabinet.Guid();
        record.cabinetVersion = version;
        record.size = std::string(bytes).size();
        record.sha256 = HashOf(bytes);
        ASSERT_TRUE(archive.trail.Append(record));
    }
    static std::string Text(const std::optional<std::vector<qel::RecordedVersion>>& versions) {
        constexpr const char* kStates[] = {"recorded", "recovered", "changed", "unrecorded", "interrupted", "missing"};
        if (!versions) return qel::LastFailure().text;
        std::string text;
        for (const qel::RecordedVersion& version : *versions) {
            text += std::to_string(version.version) + ' ' + kStates[static_cast<int>(version.state)];
            text += (version.user.empty() ? "" : ' ' + version.user) + '|';
        }
        return text;
    }
    /// All versions after opening, or why not.
    std::string Listed() const {
        Archive archive(*this);
        return archive.Open() ? Text(archive.cabinet.List()) : qel::LastFailure().text;
    }
};
using RecordedFolder = WithCabinet<TempFolder>;
