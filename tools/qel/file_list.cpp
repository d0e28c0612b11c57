#include "file_list.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

namespace tool {
namespace {

constexpr std::string_view kFirst = "qel-file-list 1";
constexpr std::string_view kDigits = "0123456789ABCDEF";

bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/._-").find(c) != std::string_view::npos;
}

}  // namespace

std::string EscapedPath(std::string_view path) {
    std::string text;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsPlain(c)) {
            text += c;
        } else {
            text += {'%', kDigits[byte / 16], kDigits[byte % 16]};
        }
    }
    return text;
}

// The result is compared with what EscapedPath makes of it, so other forms are refused.
std::string UnescapedPath(std::string_view text) {
    std::string path;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '%' && i + 2 < text.size();
        const std::size_t high = isEscape ? kDigits.find(text[i + 1]) : 0,
                          low = isEscape ? kDigits.find(text[i + 2]) : 0;
        const bool isRight = isEscape && high < kDigits.size() && low < kDigits.size();
        path += isRight ? static_cast<char>(high * 16 + low) : text[i];
        if (isRight) i += 2;
    }
    return path;
}

namespace {

std::string LineOf(const std::string& path, const ListedFile& file) {
    return file.hash.sha256 + ' ' + std::to_string(file.hash.size) + ' ' + file.kind + ' ' + EscapedPath(path);
}

// @return false for a line that SaveList does not write
bool AddLine(FileList& files, const std::string& line) {
    std::array<std::string, 4> parts;
    std::size_t at = 0;
    for (std::string& part : parts) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        part = line.substr(std::min(at, line.size()), end - std::min(at, end));
        at = end + 1;
    }
    const auto size = qel::ReadWholeNumber<std::int64_t>(parts[1]);
    const bool isHash = parts[0].size() == 64 && parts[0].find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!size || *size < 0 || !isHash || parts[2].empty() || parts[3].empty()) return false;
    const std::string path = UnescapedPath(parts[3]);
    const ListedFile file{parts[2], {static_cast<std::uint64_t>(*size), parts[0]}};
    const bool isNext = files.empty() || files.rbegin()->first < path;
    if (!isNext || LineOf(path, file) != line) return false;
    files.emplace_hint(files.end(), path, file);
    return true;
}

// @return false at the end, and for a line without a line end or longer than any of a list
bool NextLine(std::ifstream& stream, std::string& line) {
    std::array<char, 16384> text;
    stream.getline(text.data(), text.size());
    if (!stream.good()) return false;
    line.assign(text.data(), static_cast<std::size_t>(stream.gcount()) - 1);  // a zero byte is one of the line
    return true;
}

}  // namespace

void SaveList(const std::string& target, bool mayReplace, const FileList& files) {
    std::string text = std::string(kFirst) + '\n';
    for (const auto& [path, file] : files) text += LineOf(path, file) + '\n';
    text += "end " + std::to_string(files.size()) + '\n';
    WriteAsAWhole(target, mayReplace, [&](const qel::Descriptor& file) {
        qel::WriteFully(file, std::as_bytes(std::span(text)), Path(target).View());
    });
}

FileList ReadList(const std::string& path) {
    std::error_code error;  // opening a pipe would wait for somebody who writes
    const bool isFile = std::filesystem::is_regular_file(path, error);
    std::ifstream stream;
    if (isFile) stream.open(path, std::ios::binary);
    if (!isFile || !stream) throw Failure(Shown(path) + ": cannot be read", kUnreadable);
    FileList files;
    std::string line;
    std::size_t number = 1;
    bool isRight = NextLine(stream, line) && line == kFirst;
    while (isRight && NextLine(stream, line)) {
        ++number;
        if (line == "end " + std::to_string(files.size()) && stream.peek() == EOF) return files;
        isRight = AddLine(files, line);
    }
    throw Failure(Shown(path) + ": line " + std::to_string(number) + ": " +
                      (isRight ? "the list ends too early" : "not one of such a list"),
                  isRight ? kCut : kMalformed);
}

}  // namespace tool
