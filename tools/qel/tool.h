#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qellib10/qellib10.h>

// What the subcommands share. The command line and the program's output are UTF-8, texts in the library's files are in
// its code page.
namespace tool {

/// Exit statuses. Of several findings the one listed last is used.
enum Status : int {
    kGood = 0,
    kFailed = 1,        // the system or the library refused
    kUsage = 2,         // wrong arguments
    kUnknown = 3,       // a file of an unknown kind
    kRenamed = 4,       // a sealed file under a name other than its own
    kUnreadable = 5,    // a file that cannot be read
    kChanged = 6,       // data that do not match their checksums
    kCut = 7,           // a file that ends before its content does
    kInconsistent = 8,  // counts, places or texts in it that contradict each other, or entries out of order
    kMalformed = 9,     // XML that is not well-formed, or refers to something outside it
    kBadHeader = 10,    // a cabinet whose versions cannot be found

    kNotAnchored = 11,    // a trail that is consistent, and no key of it is known from elsewhere
    kUnknownSigner = 12,  // an entry signed by a key that is not trusted
    kEndedKey = 13,       // an entry signed by a key that was not valid any more at that time
    kClock = 14,          // the time of an entry is before that of the one before
    kMissing = 15,        // entries, a trail, renewal records, versions of a damaged cabinet, or files of a list
    kNeverRecorded = 16,  // a version of a cabinet that no entry of the trail announced
    kStamp = 17,          // a time stamp is not one of its entry, or not the authority's
    kRevokedKey = 18,     // an entry signed by a key that was revoked

    kBadSignature = 19,   // a person's signature that is not one of its entry
    kUnknownPerson = 20,  // one with a key that is not, or not any more, this person's
    kAgainstRules = 21,   // one that the rules do not allow
    kAdded = 22,          // a file that is not in the list of a tree
    kNotSealed = 23,      // a file that has to be sealed

    kNotReadAgain = 24,  // without any finding: files that an interrupted run has read were not read again

    kOtherTrail = 25,          // an entry of another trail, or another trail than the one that is known
    kNotYetValid = 26,         // an entry signed by a key that was not yet valid at that time
    kVersionChanged = 27,      // a version is not what was registered
    kVersionInterrupted = 28,  // only the start of its registering was recorded, with other content
    kVersionMissing = 29,      // one that was registered is not there
    kFileChanged = 30,         // a file is not what an entry has recorded
    kFileMissing = 31,         // one that an entry has recorded is not there
    kSealNeverRecorded = 32,   // a sealed file that no entry names
    kPrintNeverRecorded = 33,  // a printed report that no entry names
    kNotAFile = 34,            // a link, pipe or device in an archive
    kBeforeMissing = 35,       // the trail that another one continues is not there
    kBeforeOther = 36,         // it does not end with the entry that the other one names
    kSignersDiffer = 37,       // the archive's file of allowed signers says something else than the entries
    kTooLarge = 38,            // a file of a kind that is read as a whole, and too large for that
    kNotKept = 39,             // without any finding: what was read could not be kept for the next run
    kRenewalDiffers = 40,      // a renewal record says something else than the entry about its version
    kTrailCopy = 41,           // another file has the same trail, or only its ID
};

/// Ends the program with one line and a status.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& line, Status status = kFailed) : std::runtime_error(line), m_status(status) {}
    Status ExitStatus() const noexcept { return m_status; }

private:
    Status m_status;
};

/// One or a few words, such as "bad header"; those of a finding in JSON.
const char* NameOf(Status status);

/// Whether a status is that of a finding; the others say that there may be some.
bool IsFinding(Status status);

using Json = nlohmann::ordered_json;

/// Text in the code page, and back. Characters missing in the page become something similar, or `?`.
CString Text(const std::string& utf8);
std::string Utf8(std::string_view text);
/// Text of the command line that is stored or looked up. @throws CLI::ValidationError for characters missing in the
/// code page
CString ExactText(const std::string& utf8);

/// A decimal number that is all of @p text, with a point and finite; nothing else.
std::optional<double> ParseNumber(std::string_view text);
/// Two such numbers, separated by @p between, which occurs once.
std::optional<std::pair<double, double>> ParsePair(std::string_view text, char between);

/// Text for a terminal.
std::string Shown(std::string_view text);

/// For example "1 page", "2 pages".
std::string Count(std::size_t number, const char* one, const char* more);

/// Why the library's last operation, which returned 0, failed; @p otherwise if it gave no reason.
std::string Why(const char* otherwise);

/// The same as a failure. The kind of reason gives the status: @p ofData for data in a wrong form, kUnreadable or kCut
/// for a file that cannot be read, kFailed for the rest, such as memory that ran out.
Failure LastRefusal(const char* otherwise, Status ofData);

Status StatusOf(const CFileException& error) noexcept;
Status StatusOf(const CArchiveException& error) noexcept;

/// Runs @p step; an error with a file becomes a failure that describes it.
template <class Step> auto Guarded(Step&& step) {
    try {
        return step();
    } catch (const CFileException& error) {
        throw Failure(error.what(), StatusOf(error));
    } catch (const CArchiveException& error) {
        throw Failure(error.what(), StatusOf(error));
    } catch (const qel::DataError& error) {
        throw Failure(error.what(), kInconsistent);
    }
}

/// @p failure with the name of the file.
Failure Named(const std::string& file, const Failure& failure);

/// The same; the failure names the file.
template <class Step> auto OnFile(const std::string& file, Step&& step) {
    try {
        return Guarded(step);
    } catch (const Failure& failure) {
        throw Named(file, failure);
    }
}

/// A path of the command line in the library's form. @throws CFileException above the library's 259 bytes
CString LibraryPath(const std::string& posixPath);
/// The same. @throws Failure
CString Path(const std::string& posixPath);

/// Opens a file of the command line. @throws CFileException
void Open(CQFile& file, const std::string& path, UINT flags);

/// The first megabyte of a file, where more of it is refused anyhow. @throws Failure
std::string ReadStart(const std::string& path);

/// @throws CLI::ValidationError if both are the same file
void RequireOther(const std::string& target, const std::string& source);

/// @throws Failure if the folder of @p target is missing
void RequireFolderOf(const std::string& target);

/// @throws CLI::ValidationError if @p target is one of the @p sources; Failure if its folder is missing, and if it
/// exists, unless it may be replaced
void RequireNew(const std::string& target, bool mayReplace, const std::vector<std::string>& sources);

/// Writes @p target as a whole: to a file next to it, which is then renamed, so an existing file stays if that fails.
/// @param mayReplace false: it must not exist. @throws Failure kFailed
void WriteAsAWhole(const std::string& target, bool mayReplace,
                   const std::function<void(const qel::Descriptor& file)>& write);

/// Writes one line to the standard error output. @return @p status
Status Complain(const std::string& line, Status status);

/// Writes to the standard output.
void Print(const std::string& text);
void Print(const Json& value);

/// A required path of the command line.
CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& path, const std::string& meaning);

/// For options that are whole numbers from @p least to @p most, in decimal digits; "010" is ten. Without it the parser
/// of the command line reads 010 as eight, and cuts numbers that are too large.
CLI::Validator WholeNumber(std::int64_t least, std::int64_t most);

// One file each. Each adds its subcommand, which sets @p status when it is called.
void AddCalc(CLI::App& app, Status& status);
void AddSeal(CLI::App& app, Status& status);
void AddVerify(CLI::App& app, Status& status);
void AddCabinet(CLI::App& app, Status& status);
void AddRenewals(CLI::App& app, Status& status);
void AddSalvage(CLI::App& cabinet, Status& status);
void AddXml(CLI::App& app, Status& status);
void AddArchive(CLI::App& app, Status& status);
void AddProfile(CLI::App& app, Status& status);
void AddJob(CLI::App& app, Status& status);
void AddPlot(CLI::App& app, Status& status);
void AddSelfTest(CLI::App& app, Status& status);
#ifdef QEL_WITH_TRAIL
void AddKey(CLI::App& app, Status& status);
void AddKeyEntries(CLI::App& key, Status& status);
void AddSign(CLI::App& app, Status& status);
void AddTrail(CLI::App& app, Status& status);
void AddStamp(CLI::App& app, Status& status);
#endif

}  // namespace tool
