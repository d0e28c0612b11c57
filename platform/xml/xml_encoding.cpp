#include "qellib10/platform/xml/xml_encoding.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/converter.h"
#include "qellib10/platform/text/unicode.h"
#include "qellib10/platform/xml/xml_text.h"

namespace qel {
namespace {

constexpr std::string_view kUtf8 = "UTF-8";

std::string UpperCase(std::string_view name) {
    std::string upper(name);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

// The system's name. Windows' Japanese page has several names; the plainest one means another encoding elsewhere.
std::string SystemName(std::string_view declared) {
    constexpr std::array<std::string_view, 6> kJapanese = {"SHIFT_JIS", "SHIFT-JIS",   "X-SJIS",
                                                           "SJIS",      "WINDOWS-31J", "MS_KANJI"};
    std::string name = UpperCase(declared);
    if (name.empty() || name == "UTF8") return std::string(kUtf8);
    return std::ranges::find(kJapanese, name) != kJapanese.end() ? "CP932" : name;
}

std::unique_ptr<Converter> MakeConverter(const std::string& to, const std::string& from) {
    try {
        return std::make_unique<Converter>(to.c_str(), from.c_str());
    } catch (const std::runtime_error& error) {  // the name comes from a file, so the file is wrong
        throw DataError(error.what());
    }
}

// A file that does not start with a declaration that names an encoding: "".
std::string_view DeclaredEncoding(std::string_view bytes) {
    constexpr std::string_view kBegin = "<?xml", kName = "encoding";
    bytes.remove_prefix(std::min(bytes.find_first_not_of(kXmlBlanks), bytes.size()));
    if (!bytes.starts_with(kBegin)) return "";
    bytes = bytes.substr(0, bytes.find("?>"));
    const std::size_t name = bytes.find(kName);
    if (name == std::string_view::npos) return "";
    const std::size_t open = bytes.find_first_of("'\"", name);
    if (open == std::string_view::npos) return "";
    const std::size_t close = bytes.find(bytes[open], open + 1);
    if (close == std::string_view::npos) return "";
    const std::string_view value = bytes.substr(open + 1, close - open - 1);
    return std::ranges::all_of(value, IsXmlNamePart) ? value : "";
}

}  // namespace

std::string DecodedXml(std::string file) {
    std::string_view bytes = file;
    constexpr std::array<std::pair<std::string_view, const char*>, 3> kMarks = {
        {{"\xEF\xBB\xBF", "UTF-8"}, {"\xFF\xFE", "UTF-16LE"}, {"\xFE\xFF", "UTF-16BE"}}};
    std::string encoding = SystemName(DeclaredEncoding(bytes));
    for (const auto& [mark, name] : kMarks) {
        if (!bytes.starts_with(mark)) continue;
        bytes.remove_prefix(mark.size());
        encoding = name;
        break;
    }
    if (encoding == kUtf8) return bytes.size() == file.size() ? std::move(file) : std::string(bytes);
    auto text = MakeConverter(std::string(kUtf8), encoding)->Convert(bytes);
    if (!text) throw DataError("bytes that are not in the encoding that the file declares");
    return std::move(*text);
}

XmlEncoder XmlEncoderFor(std::string_view encoding) {
    const std::string name = SystemName(encoding);
    if (name == kUtf8) return [](std::string_view utf8) { return std::optional(std::string(utf8)); };
    const std::shared_ptr<Converter> converter = MakeConverter(name, std::string(kUtf8));
    return [converter](std::string_view utf8) { return converter->Convert(utf8); };
}

std::string WithReferencesFor(const XmlEncoder& encoder, std::string_view utf8) {
    if (encoder(utf8)) return std::string(utf8);
    std::string result;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t ascii = EndOfAscii(utf8, at);
        result += utf8.substr(at, ascii - at);
        at = ascii;
        if (at == utf8.size()) break;
        const char32_t character = NextCharacter(utf8, at);
        const std::string_view bytes = utf8.substr(ascii, at - ascii);
        result +=
            encoder(bytes) ? std::string(bytes) : "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ';';
    }
    return result;
}

}  // namespace qel
