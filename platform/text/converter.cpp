#include "qellib10/platform/text/converter.h"

#include <iconv.h>

#include <cerrno>
#include <stdexcept>

namespace qel {
namespace {

bool IsOpen(iconv_t descriptor) {
    return descriptor != reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr): iconv's own failure mark
}

}  // namespace

Converter::Converter(const char* to, const char* from) : m_descriptor(iconv_open(to, from)) {
    if (!IsOpen(m_descriptor)) {
        throw std::runtime_error(std::string("this system cannot convert text from ") + from + " to " + to +
                                 ": the C library's conversion modules (gconv) are missing");
    }
}

Converter::~Converter() { iconv_close(m_descriptor); }

std::optional<std::string> Converter::Convert(std::string_view text) {
    constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
    std::string result(text.size() * 2 + 4, '\0');
    std::size_t written = 0;
    char* in = const_cast<char*>(text.data());  // iconv only reads through it
    std::size_t inLeft = text.size();
    iconv(m_descriptor, nullptr, nullptr, nullptr, nullptr);
    for (bool flushing = false;;) {
        char* out = result.data() + written;
        std::size_t outLeft = result.size() - written;
        const std::size_t outcome = iconv(m_descriptor, flushing ? nullptr : &in, &inLeft, &out, &outLeft);
        written = result.size() - outLeft;
        if (outcome != kFailed) {
            if (flushing) break;
            flushing = true;  // an encoding with shift states may have to return to its first one
        } else if (errno == E2BIG) {
            result.resize(result.size() * 2);
        } else {
            return std::nullopt;
        }
    }
    result.resize(written);
    return result;
}

}  // namespace qel
