#include "qellib10/record/recorded_version.h"

namespace qel {

std::string_view StateText(RecordedState state) {
    switch (state) {
        case RecordedState::kChanged:
            return "is not what was registered";
        case RecordedState::kUnrecorded:
            return "no entry announced it";
        case RecordedState::kInterrupted:
            return "its registering was interrupted";
        case RecordedState::kMissing:
            return "was registered, and is not there";
        default:
            return "";
    }
}

}  // namespace qel
