#include "demo/attack/attacker.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "demo/result/archive_trail.h"
#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

constexpr const char* kPrevious = "\"prev\":\"";
constexpr std::size_t kHashSize = 64;

// Replaces what is between the quotation marks after @p key.
void SetText(std::string& line, const std::string& key, const std::string& text) {
    const std::size_t at = line.find(key) + key.size();
    line.replace(at, line.find_first_of("\",", at) - at, text);
}

// Of the last entry: its number and the hash of its line.
qel::TrailReceipt LastOf(const std::string& trail) {
    qel::TrailReader reader;
    qel::TrailReceipt last;
    if (reader.Open(trail) == 0) throw Failure(trail + ": " + Why("cannot be read"));
    while (const auto entry = reader.Next()) last = {.number = entry->number, .hash = reader.Hash()};
    return last;
}

}  // namespace

Attacker::Attacker(const CopiedArchive& archive) : m_archive(archive) {
    const std::string path(qel::ToLibraryPath(archive.Outside("own_key").native()));
    if (m_key->Make(path, "") == 0) throw Failure(path + ": " + Why("cannot be made"));
}

// What nothing of this library is needed for.
std::string Attacker::Signed(const std::string& part) const {
    const std::filesystem::path file = m_archive.Outside("entry");
    std::ofstream(file, std::ios::binary) << part;
    const std::string folder = file.parent_path().native();
    const std::string command = "cd '" + folder +
                                "' && rm -f entry.sig && "
                                "ssh-keygen -q -Y sign -f own_key -n qellib10-entry entry 2>ssh-keygen.err";
    if (std::system(command.c_str()) != 0) throw Failure("ssh-keygen does not sign: is it installed?");
    std::ifstream signature(file.native() + ".sig");
    std::string base64;
    for (std::string line; std::getline(signature, line);) {
        if (!line.starts_with('-')) base64 += line;
    }
    return part.substr(0, part.size() - 1) + ",\"sig\":\"" + base64 + "\"}";
}

void Attacker::Append(const std::string& like, const std::string& from, const std::string& to) const {
    std::vector<std::string> lines = m_archive.Lines();
    const qel::TrailReceipt last = LastOf(m_archive.Path(kTrail));
    std::string part = lines[m_archive.LineWith(like)];
    part.resize(part.find(kPrevious) + std::string_view(kPrevious).size() + kHashSize);
    part += "\"}";
    SetText(part, kPrevious, last.hash);
    SetText(part, "\"number\":", std::to_string(last.number + 1));
    if (const std::size_t at = part.find(from); at != std::string::npos) part.replace(at, from.size(), to);
    lines.push_back(Signed(part));
    m_archive.WriteLines(lines);
}

void Attacker::MakeTrailAgain() const {
    std::vector<qel::TrailRecord> records;
    qel::TrailReader reader;
    if (reader.Open(m_archive.Path(kTrail)) == 0) throw Failure(Why("the trail cannot be read"));
    while (const auto entry = reader.Next()) {
        if (!qel::trail_kind::IsOwn(entry->action)) records.push_back(*entry);
    }
    m_archive.Remove(kTrail);
    qel::Trail again({.path = m_archive.Path(kTrail),
                      .headPath = std::string(qel::ToLibraryPath(m_archive.Outside("own_head").native())),
                      .application = "titration",
                      .version = TITRATION_VERSION,
                      .flush = qel::TrailFlush::kCaller},
                     m_key);
    bool isDone = again.Open() != 0;
    for (const qel::TrailRecord& record : records) isDone = isDone && again.Append(record).has_value();
    if (!isDone || again.Flush() == 0) throw Failure(Why("the trail cannot be made again"));
}

}  // namespace titration
