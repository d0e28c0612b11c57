#include "qellib10/file/check_sums.h"

#include <numeric>

#include "qellib10/file/check_sums_vector.h"
#include "qellib10/file/crc32_bzip2.h"

namespace qel {
namespace {

using Bytes = std::span<const unsigned char>;

// The fastest forms for this processor.
struct Forms {
    void (*crc)(RunningSums&, Bytes) noexcept;
    void (*sum)(RunningSums&, Bytes) noexcept;
    void (*both)(RunningSums&, Bytes) noexcept;
};

void PlainCrc(RunningSums& sums, Bytes bytes) noexcept { sums.crc = CrcBySlices(sums.crc, bytes); }
void PlainSum(RunningSums& sums, Bytes bytes) noexcept {
    sums.sum = std::accumulate(bytes.begin(), bytes.end(), sums.sum);
}
void VectorSum(RunningSums& sums, Bytes bytes) noexcept { sums.sum = SumByVector(sums.sum, bytes); }

void PlainBoth(RunningSums& sums, Bytes bytes) noexcept {
    constexpr std::size_t kBlock = 16384;  // stays in the first-level cache for the second pass
    for (; bytes.size() > kBlock; bytes = bytes.subspan(kBlock)) {
        PlainCrc(sums, bytes.first(kBlock));
        PlainSum(sums, bytes.first(kBlock));
    }
    PlainCrc(sums, bytes);
    PlainSum(sums, bytes);
}

const Forms& BestForms() noexcept {
    static const Forms forms = HasWidestCarrylessMultiply()
                                   ? Forms{CrcByWidestFolding, VectorSum, CrcAndSumByWidestFolding}
                               : HasWideCarrylessMultiply() ? Forms{CrcByWideFolding, VectorSum, CrcAndSumByWideFolding}
                               : HasCarrylessMultiply()     ? Forms{CrcByFolding, PlainSum, CrcAndSumByFolding}
                                                            : Forms{PlainCrc, PlainSum, PlainBoth};
    return forms;
}

}  // namespace

void CheckSums::Add(Bytes bytes) noexcept {
    RunningSums sums{m_crc, m_sum};
    const Forms& forms = BestForms();
    (m_wanted == kBoth ? forms.both : m_wanted == kCrc ? forms.crc : forms.sum)(sums, bytes);
    m_crc = sums.crc;
    m_sum = sums.sum;
}

}  // namespace qel
