#include "qellib10/platform/units/unit_library.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <string>

#include <dlfcn.h>
#include <locale.h>
#include <udunits2.h>

#include "qellib10/platform/fork_safe_lock.h"

namespace qel {
namespace {

constexpr std::size_t kLongest = 64;
constexpr std::array<std::string_view, kLibraryUnits> kSymbols = {"m", "kg", "s", "A", "K", "mol", "cd", "rad"};

// udunits2 reads numbers, also those of its own tables, by the locale of the thread.
class PlainLocale {
public:
    PlainLocale() : m_plain(newlocale(LC_ALL_MASK, "C", nullptr)) {
        if (m_plain != nullptr) m_former = uselocale(m_plain);
    }
    ~PlainLocale() {
        if (m_plain == nullptr) return;
        uselocale(m_former);
        freelocale(m_plain);
    }
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;

private:
    locale_t m_plain;
    locale_t m_former = nullptr;
};

// The functions of udunits2 that are called. It is opened once and never closed.
class Library {
public:
    Library() {
        void* const library = dlopen("libudunits2.so.0", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) return;
        decltype(&ut_set_error_message_handler) setHandler = nullptr;
        decltype(&ut_read_xml) readTables = nullptr;
        decltype(&ut_ignore) ignore = nullptr;
        const bool isComplete = Find(library, "ut_parse", parse) && Find(library, "ut_free", free) &&
                                Find(library, "ut_accept_visitor", acceptVisitor) &&
                                Find(library, "ut_get_symbol", symbolOf) &&
                                Find(library, "ut_set_error_message_handler", setHandler) &&
                                Find(library, "ut_ignore", ignore) && Find(library, "ut_read_xml", readTables);
        if (!isComplete) return;
        setHandler(ignore);  // it writes to stderr
        tables = readTables(nullptr);
    }

    decltype(&ut_parse) parse = nullptr;
    decltype(&ut_free) free = nullptr;
    decltype(&ut_accept_visitor) acceptVisitor = nullptr;
    decltype(&ut_get_symbol) symbolOf = nullptr;
    ut_system* tables = nullptr;

private:
    template <class Function> static bool Find(void* library, const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(library, name));
        return function != nullptr;
    }
};

// What the functions below collect.
struct Parts {
    const Library& library;
    LibraryUnit unit;
};

ut_status AddPower(const ut_unit* basic, int power, Parts& parts) {
    const char* const symbol = parts.library.symbolOf(basic, UT_ASCII);
    if (symbol == nullptr) return UT_VISIT_ERROR;
    const auto found = std::ranges::find(kSymbols, std::string_view(symbol));
    if (found == kSymbols.end()) return UT_VISIT_ERROR;
    parts.unit.powers[static_cast<std::size_t>(found - kSymbols.begin())] += power;
    return UT_SUCCESS;
}

ut_status VisitBasic(const ut_unit* unit, void* parts) { return AddPower(unit, 1, *static_cast<Parts*>(parts)); }

ut_status VisitProduct(const ut_unit* /*unit*/, int count, const ut_unit* const* basic, const int* powers,
                       void* parts) {
    for (int i = 0; i < count; ++i)
        if (AddPower(basic[i], powers[i], *static_cast<Parts*>(parts)) != UT_SUCCESS) return UT_VISIT_ERROR;
    return UT_SUCCESS;
}

ut_status VisitNoFactor(const ut_unit* /*unit*/, double /*number*/, const ut_unit* /*reference*/, void* /*parts*/) {
    return UT_MEANINGLESS;
}

ut_status VisitTime(const ut_unit* /*unit*/, const ut_unit* /*time*/, double /*origin*/, void* /*parts*/) {
    return UT_MEANINGLESS;
}

ut_status VisitLinear(const ut_unit* /*unit*/, double scale, const ut_unit* underlying, double offset, void* argument) {
    // What is below is a product or a basic unit: the library joins factors and offsets to one.
    static constexpr ut_visitor kBelow = {
        VisitBasic, VisitProduct, [](const ut_unit*, double, const ut_unit*, double, void*) { return UT_MEANINGLESS; },
        VisitTime, VisitNoFactor};
    Parts& parts = *static_cast<Parts*>(argument);
    parts.unit.scale = scale;
    parts.unit.offset = offset;
    return parts.library.acceptVisitor(underlying, &kBelow, argument);
}

bool IsName(std::string_view name) {
    return !name.empty() && name.size() <= kLongest && std::ranges::none_of(name, [](char c) {
        return static_cast<unsigned char>(c) <= ' ' ||
               std::string_view("()[]{}*/.^+-@,").find(c) != std::string_view::npos;
    });
}

}  // namespace

LibraryAnswer FindLibraryUnit(std::string_view name, LibraryUnit& unit) {
    if (!IsName(name)) return LibraryAnswer::kUnknown;
    static ForkSafeLock& lock = *new ForkSafeLock;  // for the status and the parser, which are the process's
    const std::scoped_lock hold(lock);
    const PlainLocale plain;
    static const Library library;
    if (library.tables == nullptr) return LibraryAnswer::kMissing;
    ut_unit* const parsed = library.parse(library.tables, std::string(name).c_str(), UT_UTF8);
    if (parsed == nullptr) return LibraryAnswer::kUnknown;
    static constexpr ut_visitor kVisitor = {VisitBasic, VisitProduct, VisitLinear, VisitTime, VisitNoFactor};
    Parts parts{library, {}};
    const ut_status status = library.acceptVisitor(parsed, &kVisitor, &parts);
    library.free(parsed);
    if (status == UT_MEANINGLESS) return LibraryAnswer::kNoFactor;
    if (status != UT_SUCCESS) return LibraryAnswer::kUnknown;
    if (!std::isfinite(parts.unit.scale) || parts.unit.scale <= 0.0 || !std::isfinite(parts.unit.offset))
        return LibraryAnswer::kUnknown;
    unit = parts.unit;
    return LibraryAnswer::kFound;
}

}  // namespace qel
