#include "qellib10/platform/text/c_locale.h"

#include <new>

namespace qel {

locale_t CLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    if (locale == nullptr) throw std::bad_alloc();
    return locale;
}

}  // namespace qel
