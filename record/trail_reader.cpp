#include "qellib10/record/trail_reader.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"

namespace qel {

struct TrailReader::State {
    explicit State(const std::string& path) : file(path, GuardedFile::Use::kRead), lines(file, 0, file.Size()) {}

    GuardedFile file;
    TrailLines lines;
    std::string hash;
    SshPublicKey signer = {};
};

TrailReader::TrailReader() = default;
TrailReader::~TrailReader() = default;

int TrailReader::Open(std::string_view path) {
    m_state.reset();
    return AsResult("TrailReader::Open", [&] {
        m_state.reset(new State(std::string(path)));
        return 1;
    });
}

std::optional<TrailEntry> TrailReader::Next() {
    std::optional<TrailEntry> entry;
    AsResult("TrailReader::Next", [&] {
        if (m_state == nullptr) return Refuse(FailureKind::kState, "", "no trail is open");
        const TrailLines::Line line = m_state->lines.Next();
        if (line.kind == TrailLines::Kind::kPart) throw DataError("the trail ends within a line");
        if (line.kind == TrailLines::Kind::kTooLong) throw DataError("a line of the trail is longer than 64 KiB");
        if (line.kind == TrailLines::Kind::kEnd) return 1;
        ReadLine read = ReadEntry(line.text);
        entry = std::move(read.entry);
        m_state->signer = read.signature.key;
        m_state->hash = Hex(Sha256(line.text));
        return 1;
    });
    return entry;
}

std::string TrailReader::Hash() const { return m_state != nullptr ? m_state->hash : ""; }

std::string TrailReader::Signer() const {
    return m_state != nullptr && !m_state->hash.empty() ? m_state->signer.Fingerprint() : "";
}

}  // namespace qel
