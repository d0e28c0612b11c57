#include "qellib10/record/signature_log.h"

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"

namespace qel {

SignatureLog::SignatureLog(std::string path, SigningRules rules) : m_path(std::move(path)), m_rules(std::move(rules)) {}

std::vector<SignatureProblem> SignatureLog::CatchUp(const TrailReceipt& known, const Visit& visit) {
    std::optional<Progress> read = std::exchange(m_read, std::nullopt);
    if (!read) {
        read = Progress{};
        read->state = std::make_unique<SignatureState>(m_rules);
    }
    std::vector<SignatureProblem> problems = Read(*read, known, visit);
    m_read = std::move(read);
    return problems;
}

std::vector<SignatureProblem> SignatureLog::Read(Progress& read, const TrailReceipt& known, const Visit& visit) const {
    const GuardedFile file(m_path, GuardedFile::Use::kRead);
    const std::uint64_t size = file.Size();
    if (size < read.at) throw DataError("the trail became shorter");
    TrailLines lines(file, read.at, size);
    std::vector<SignatureProblem> problems;
    TrailLines::Line text = lines.Next();
    for (; text.kind == TrailLines::Kind::kWhole && read.last.number < known.number; text = lines.Next()) {
        const ReadLine line = ReadEntry(text.text);
        RequireNext(read, line);
        read.last = {.number = line.entry.number, .hash = Hex(Sha256(text.text))};
        read.at = text.End();
        read.trailId = line.entry.trailId;
        read.time = line.entry.time;
        const bool isKnown = read.last.number == known.number;
        if (isKnown && read.last.hash != known.hash) throw DataError("the trail has another entry than was appended");
        std::vector<SignatureProblem> found = read.state->Take(line.entry);
        if (visit) visit({line, read.last.hash, found});
        if (isKnown) problems = std::move(found);
    }
    if (read.last.number != known.number || read.last.hash != known.hash)
        throw DataError("the trail is not the one that was acknowledged");
    return problems;
}

void SignatureLog::RequireNext(const Progress& read, const ReadLine& line) {
    const bool isNext = line.entry.number == read.last.number + 1 && line.entry.previous == read.last.hash &&
                        (read.trailId.empty() || read.trailId == line.entry.trailId);
    if (!isNext) throw DataError("an entry of the trail is not the one that follows");
}

}  // namespace qel
