#include "qellib10/record/recorded_cabinet.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/record/file_digest.h"
#include "qellib10/record/trail_backwards.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_writer.h"
#include "qellib10/record/version_list.h"
#include "qellib10/secure/renewal_history.h"

namespace qel {
namespace {

std::string Number(std::uint64_t version) { return "version " + std::to_string(version); }

std::string GuidOf(const RenewalHistory& history) { return std::string(history.Guid().GetString()); }

CString NameOf(std::string_view path) { return CQFile::GetFilenameFromPath(CString(path)); }

void RequireText(std::string_view text, const char* failure) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) throw DataError(failure);
}

FileDigest DigestIn(const TrailRecord& entry) { return {entry.size, entry.sha256}; }

}  // namespace

struct RecordedCabinet::State {
    State(TrailWriter& writer, RecordedCabinetSettings places) : trail(writer), settings(std::move(places)) {}

    void Open();
    void RequireOpen();
    TrailReceipt Register(std::string_view source, std::string_view user, std::string_view reason);
    TrailReceipt TakeOut(std::uint64_t version, std::string_view target, std::string_view user,
                         std::string_view reason);
    std::vector<RecordedVersion> List();

    CFile Cabinet() const;
    std::optional<TrailEntry> LastOf(const std::string& guid) const;
    std::uint64_t Settle(RenewalHistory& of, const TrailEntry& last);
    TrailReceipt Enter(const TrailRecord& record);

    TrailWriter& trail;
    const RecordedCabinetSettings settings;
    std::unique_ptr<RenewalHistory> history;
    bool isOpen = false;         // by the application: after a failure the files are opened again
    bool isSettled = false;      // the trail has an end for each registering
    std::uint64_t recorded = 0;  // the cabinet has had so many versions
};

// The lock of the renewal records comes before the look into the trail: nobody registers in between.
void RecordedCabinet::State::Open() {
    history.reset();
    isSettled = false;
    trail.Refresh();  // without a trail nothing is made
    auto opened = std::make_unique<RenewalHistory>(settings.cabinetPath, settings.recordPath);
    if (!settings.guid.empty() && GuidOf(*opened) != settings.guid)
        throw DataError("this is another cabinet than " + settings.guid);
    const bool isNew = opened->MakeCabinet();
    trail.Refresh();
    recorded = 0;
    const std::optional<TrailEntry> last = isNew ? std::nullopt : LastOf(GuidOf(*opened));
    if (last) recorded = Settle(*opened, *last);
    history = std::move(opened);
    isSettled = true;
}

void RecordedCabinet::State::RequireOpen() {
    if (!isOpen) throw DataError("the cabinet is not open");
    if (!history || !isSettled) Open();
}

CFile RecordedCabinet::State::Cabinet() const {
    return CFile(CString(settings.cabinetPath), CFile::modeRead | CFile::shareDenyNone);
}

std::optional<TrailEntry> RecordedCabinet::State::LastOf(const std::string& guid) const {
    TrailBackwards entries(trail.Path(), trail.Last());
    while (std::optional<TrailEntry> entry = entries.Next()) {
        if (entry->cabinet == guid && IsOfRegistering(*entry)) return entry;
    }
    return std::nullopt;
}

// What is read in the cabinet is not sure to be on the disk before it was written again.
// @return how many versions the cabinet has had after this entry
std::uint64_t RecordedCabinet::State::Settle(RenewalHistory& of, const TrailEntry& last) {
    const std::uint64_t version = last.cabinetVersion;
    if (last.action == trail_kind::kAbandoned) return version - 1;
    if (last.action != trail_kind::kRegistering) return version;
    of.FlushAgain();
    const std::optional<FileDigest> found = DigestOf(Cabinet(), version);
    if (found && *found != DigestIn(last)) return version;
    TrailRecord end = last;
    const std::string what = "the registering of entry " + std::to_string(last.number) + " was interrupted; ";
    end.action = found ? trail_kind::kRecovered : trail_kind::kAbandoned;
    end.after = found ? trail_kind::kRegistered : "";
    end.reason = what + (found ? "the version is in the cabinet" : "the version is not in the cabinet");
    Enter(end);
    return found ? version : version - 1;
}

TrailReceipt RecordedCabinet::State::Enter(const TrailRecord& record) {
    TrailReceipt receipt = trail.Append(record);
    trail.Flush();
    return receipt;
}

TrailReceipt RecordedCabinet::State::Register(std::string_view source, std::string_view user, std::string_view reason) {
    RequireText(user, "a registration needs a name of who does it");
    RequireOpen();
    if (history->Latest() > 0) RequireText(reason, "a version that changes an earlier one needs a reason");
    if (history->Latest() < recorded)
        throw DataError(Number(recorded) + " was recorded, and the cabinet ends with " + Number(history->Latest()));
    const CString name = NameOf(source);
    const PrivateCopy copy(settings.cabinetPath, source);
    TrailRecord record{.user = std::string(user),
                       .action = std::string(trail_kind::kRegistering),
                       .object = ToUtf8(name.View()),
                       .reason = std::string(reason),
                       .cabinet = GuidOf(*history),
                       .cabinetVersion = std::uint64_t{history->Latest()} + 1,
                       .size = copy.Digest().size,
                       .sha256 = copy.Digest().sha256};
    isSettled = false;
    Enter(record);
    history->RegisterCopy(copy.Path().View(), name.View(), FromUtf8(user), FromUtf8(reason));
    if (DigestOf(Cabinet(), record.cabinetVersion) != copy.Digest())
        throw DataError(Number(record.cabinetVersion) + " in the cabinet is not what was to be registered");
    record.action = trail_kind::kRegistered;
    TrailReceipt receipt = Enter(record);
    recorded = record.cabinetVersion;
    isSettled = true;
    return receipt;
}

TrailReceipt RecordedCabinet::State::TakeOut(std::uint64_t version, std::string_view target, std::string_view user,
                                             std::string_view reason) {
    RequireText(user, "taking out a version needs a name of who does it");
    RequireText(reason, "taking out a version needs a reason");
    RequireOpen();
    const std::optional<FileDigest> found = DigestOf(Cabinet(), version, OfDamaged::kHash);
    if (!found) throw DataError("the cabinet has no " + Number(version));
    if (found->sha256.empty()) throw DataError(Number(version) + " cannot be found in the damaged cabinet");
    TrailReceipt receipt = Enter({.user = std::string(user),
                                  .action = std::string(trail_kind::kVersionTakenOut),
                                  .object = ToUtf8(NameOf(target).View()),
                                  .reason = std::string(reason),
                                  .cabinet = GuidOf(*history),
                                  .cabinetVersion = version,
                                  .size = found->size,
                                  .sha256 = found->sha256});
    history->TakeOut(static_cast<DWORD>(version), target);
    // A cabinet that somebody has made can have two versions of one number.
    if (DigestOfFile(target) != *found)
        throw DataError("what was taken out is not what the entry says: the cabinet has " + Number(version) + " twice");
    return receipt;
}

std::vector<RecordedVersion> RecordedCabinet::State::List() {
    RequireOpen();
    trail.Refresh();
    VersionList versions(GuidOf(*history));
    versions.Read(trail.Path(), trail.Last());
    return versions.With(Cabinet());
}

RecordedCabinet::RecordedCabinet(Trail& trail, RecordedCabinetSettings settings)
    : m_state(new State(WriterOf(trail), std::move(settings))) {}
RecordedCabinet::~RecordedCabinet() = default;

int RecordedCabinet::Open() {
    m_state->isOpen = false;
    m_state->isOpen = Succeeds("RecordedCabinet::Open", [&] { m_state->Open(); });
    return m_state->isOpen ? 1 : 0;
}

std::uint64_t RecordedCabinet::Latest() const { return m_state->history ? m_state->history->Latest() : 0; }
std::string RecordedCabinet::Guid() const { return m_state->history ? GuidOf(*m_state->history) : ""; }

std::optional<TrailReceipt> RecordedCabinet::Register(std::string_view source, std::string_view user,
                                                      std::string_view reason) {
    std::optional<TrailReceipt> receipt;
    AsResult("RecordedCabinet::Register", [&] {
        receipt = m_state->Register(source, user, reason);
        return 1;
    });
    return receipt;
}

std::optional<TrailReceipt> RecordedCabinet::TakeOut(std::uint64_t version, std::string_view target,
                                                     std::string_view user, std::string_view reason) {
    std::optional<TrailReceipt> receipt;
    AsResult("RecordedCabinet::TakeOut", [&] {
        receipt = m_state->TakeOut(version, target, user, reason);
        return 1;
    });
    return receipt;
}

std::optional<std::vector<RecordedVersion>> RecordedCabinet::List() {
    std::optional<std::vector<RecordedVersion>> versions;
    AsResult("RecordedCabinet::List", [&] {
        versions = m_state->List();
        return 1;
    });
    return versions;
}

}  // namespace qel
