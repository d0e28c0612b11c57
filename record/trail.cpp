#include "qellib10/record/trail.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/trail_writer.h"

namespace qel {

struct Trail::State {
    TrailWriter writer;
};

Trail::Trail(TrailSettings settings, std::shared_ptr<Signer> signer)
    : m_state(new State{TrailWriter(std::move(settings), std::move(signer))}) {}
Trail::~Trail() = default;

int Trail::Open() {
    return Succeeds("Trail::Open", [&] { m_state->writer.Open(); }) ? 1 : 0;
}

std::optional<TrailReceipt> Trail::Append(const TrailRecord& record) {
    std::optional<TrailReceipt> receipt;
    AsResult("Trail::Append", [&] {
        if (trail_kind::IsOwn(record.action)) throw DataError("only the trail itself appends entries of this kind");
        receipt = m_state->writer.Append(record);
        return 1;
    });
    return receipt;
}

int Trail::Flush() {
    return Succeeds("Trail::Flush", [&] { m_state->writer.Flush(); }) ? 1 : 0;
}

TrailReceipt Trail::Last() const { return m_state->writer.Last(); }

TrailWriter& WriterOf(Trail& trail) { return trail.m_state->writer; }

}  // namespace qel
