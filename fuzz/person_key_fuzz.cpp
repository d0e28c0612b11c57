// Law: a person's key file that is read is the file that is written of it, and its cost is within the limits.
#include "qellib10/record/person_key_format.h"

#include "law.h"
#include "qellib10/platform/error.h"

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    try {
        qel::PersonKeyFile::OfText(Text(data, size));
        return true;
    } catch (const qel::DataError&) {
        return false;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Text(data, size);
    try {
        const auto file = qel::PersonKeyFile::OfText(text);
        Require(file.Text() == text);
        Require(file.seal.cost.passes <= 8 && file.seal.cost.memory <= std::uint64_t{1} << 30);
        Require(file.seal.cost.passes >= 3 && file.seal.cost.memory >= std::uint64_t{256} << 20);
    } catch (const qel::DataError&) {
    }
    return 0;
}
