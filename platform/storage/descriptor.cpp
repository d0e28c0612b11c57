#include "qellib10/platform/storage/descriptor.h"

#include <unistd.h>

namespace qel {

void Descriptor::Reset(int number) noexcept {
    if (m_number >= 0) ::close(m_number);
    m_number = number;
}

}  // namespace qel
