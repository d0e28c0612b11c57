#include "trail_options.h"

#include <algorithm>
#include <filesystem>

namespace tool {

void AddBefore(CLI::App& command, std::vector<std::string>& files) {
    command.add_option("--before", files, "A trail that is continued, where it is not in the same folder")
        ->allow_extra_args(false)
        ->type_name("FILE");
}

void RequireOutside(const std::string& file, const std::vector<std::string>& folders) {
    std::error_code error;
    if (file.empty()) return;
    const std::filesystem::path at = std::filesystem::weakly_canonical(std::filesystem::absolute(file, error), error);
    for (const std::string& folder : folders) {
        const auto relative = at.lexically_relative(std::filesystem::canonical(folder, error));
        if (relative.empty() || *relative.begin() != "..")
            throw CLI::ValidationError("\"" + file + "\" is in the folder that is checked");
    }
}

std::string NotReadAgainText(std::size_t passed) {
    return passed > 0 ? Count(passed, "file", "files") + " not read again\n" : "";
}

Status WithResume(Status status, const Resume* resume) {
    if (resume == nullptr) return status;
    Status also = resume->Passed() > 0 ? kNotReadAgain : kGood;
    if (!resume->HasKeptAll())
        also = Complain(Shown(resume->Path()) + ": cannot be written: another run reads these files again", kNotKept);
    return IsFinding(status) ? status : std::max(status, also);
}

const char* const kTrailStatuses =
    "  5  unreadable      a file or folder of the archive cannot be read\n"
    "  6  changed         an entry is not what was signed\n"
    "  7  cut             the trail ends within a line\n"
    "  8  inconsistent    entries are exchanged, or missing in between\n"
    "  9  malformed       a line that no trail writes\n"
    "  10 bad header      the versions of a cabinet cannot be found\n"
    "  12 unknown signer  an entry is signed by a key that is not trusted\n"
    "  13 key not valid   an entry is signed by a key that had ended\n"
    "  14 clock           the time of an entry is before that of the one before\n"
    "  15 missing         entries, a trail, or renewal records that have to be there are missing\n"
    "  16 never recorded  a version of a cabinet that no entry announced\n"
    "  17 time stamp      a time stamp is not one of its entry, or not the authority's\n"
    "  18 revoked key     an entry is signed by a key that was revoked, and nothing shows it was there before\n"
    "  19 signature       a person's signature is not what was signed, or belongs to another entry\n"
    "  20 person's key    a person's signature is made with a key that is not that person's, or has ended\n"
    "  21 against rules   a person's signature is one that the rules do not allow\n"
    "  25 other trail     an entry of another trail, or not the trail that is known\n"
    "  26 key not yet valid     an entry is signed by a key that was not yet valid\n"
    "  27 version changed       a version is not what was registered\n"
    "  28 version interrupted   a version whose registering was interrupted has other content\n"
    "  29 version missing       a version that was registered is not there\n"
    "  30 file changed          a file is not what an entry has recorded\n"
    "  31 file missing          a file that an entry has recorded is not there\n"
    "  32 seal never recorded   a sealed file that no entry names\n"
    "  33 print never recorded  a report (job or PDF) that no entry names\n"
    "  34 not a file            a link, pipe or device in the archive\n"
    "  35 trail before missing  the trail that this one continues is not there\n"
    "  36 other trail before    it does not end with the entry that this one names\n"
    "  37 allowed signers       the archive's own file of them says something else than the entries\n"
    "  41 trail copy      another file in the folder has the same trail, or only its ID\n"
    "Without any finding the highest of:\n"
    "  11 not anchored    consistent, but no key, or no ID of the trail, is known from elsewhere\n"
    "  24 not read again  files that an interrupted run has read were not read again\n"
    "  39 not kept        what was read could not be kept for the next run";

}  // namespace tool
