#include "demo/support/text_file.h"

#include <algorithm>
#include <filesystem>

#include <qellib10/qellib10.h>

#include "demo/support/file_step.h"

namespace titration {
namespace {

constexpr ULONGLONG kLargestFile = 64 << 20;

std::string ReadWhole(const std::string& path) {
    CFile file;
    OpenForReading(file, path);
    if (file.GetLength() > kLargestFile)
        throw Failure(path + ": has " + std::to_string(file.GetLength()) +
                      " bytes, and at most 64 MiB are read; keep the table alone in the file");
    std::string text(file.GetLength(), '\0');
    text.resize(file.Read(text.data(), static_cast<UINT>(text.size())));
    return text;
}

// Programs export a table as text only when asked to; their own files are easily taken for it.
void RequireNoProgramsFile(std::string_view bytes, const std::string& path) {
    constexpr std::string_view kZip("PK\x03\x04"), kOldOffice("\xD0\xCF\x11\xE0"), kGzip("\x1F\x8B");
    const char* const what = bytes.starts_with(kZip)         ? "a spreadsheet or other compressed file"
                             : bytes.starts_with(kOldOffice) ? "a spreadsheet's own file"
                             : bytes.starts_with(kGzip)      ? "a compressed file"
                                                             : nullptr;
    if (what != nullptr) throw Failure(path + ": is " + what + ", not text; save its table as CSV in UTF-8");
}

std::string FromLittleEndian(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]), high = static_cast<unsigned char>(bytes[i + 1]);
        text += static_cast<char16_t>(low | high << 8);
    }
    return qel::FromUtf16(text);
}

}  // namespace

void RequireOrdinaryFile(const std::string& path) {
    if (!qel::IsUtf8(path))
        throw Failure(path + ": the file's name is not in UTF-8, as names are here; rename the file");
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw Failure(path + ": there is no such file");
    if (std::filesystem::is_directory(status)) throw Failure(path + ": is a folder, name a file in it");
    if (!std::filesystem::is_regular_file(status)) throw Failure(path + ": is a pipe or device, not an ordinary file");
}

std::string ReadBytes(const std::string& path) {
    return OnFile(path, [&] { return ReadWhole(path); });
}

std::string ReadTextFile(const std::string& path) {
    std::string text = ReadBytes(path);
    RequireNoProgramsFile(text, path);
    if (text.starts_with("\xFF\xFE")) text = FromLittleEndian(std::string_view(text).substr(2));
    const std::size_t zero = text.find('\0');
    if (zero != std::string::npos)
        throw Failure(path + ": byte " + std::to_string(zero + 1) +
                      " is zero, so it is not text, or is UTF-16 in the other byte order; save it as UTF-8");
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    return text;
}

void WriteTextFile(const std::string& text, const std::string& path) {
    OnFile(path, [&] {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
        file.Write(text.data(), static_cast<UINT>(text.size()));
        file.Close();
    });
}

std::vector<std::string_view> Lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
    }
    return lines;
}

}  // namespace titration
