// Laws: any text is a trace or refused with a reason; what is computed again of one is, as a trace, computed again with
// the same digits, and can be shown.
#include "qellib10/quantity/trace.h"

#include "law.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view json(reinterpret_cast<const char*>(data), size);
    std::string error;
    const std::optional<qel::TraceCheck> check = qel::CheckTrace(json, error);
    if (!check) {
        Require(!error.empty());
        return 0;
    }
    const std::optional<qel::TraceCheck> again = qel::CheckTrace(check->computed.Json(), error);
    Require(again && again->differences.empty());
    for (const qel::TraceLanguage language : {qel::TraceLanguage::kEnglish, qel::TraceLanguage::kJapanese})
        Require(!check->computed.Text(language).empty());
    return 0;
}
