#include "tool.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace tool {

namespace fs = std::filesystem;

CString Text(const std::string& utf8) { return CString(std::string_view(qel::FromUtf8(utf8))); }

std::string Utf8(std::string_view text) { return qel::ToUtf8(text); }

// A letter without its accent, or a question mark, is a different text; the page's own forms of dashes and tildes are
// not.
CString ExactText(const std::string& utf8) {
    const auto asciiIn = [](const std::string& text) {
        return std::ranges::count_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    };
    const CString text = Text(utf8);
    if (asciiIn(Utf8(text.View())) != asciiIn(utf8))
        throw CLI::ValidationError("\"" + utf8 + "\" has characters that are missing in code page " +
                                   std::to_string(qel::CodePage()));
    return text;
}

std::optional<double> ParseNumber(std::string_view text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<std::pair<double, double>> ParsePair(std::string_view text, char between) {
    const std::size_t at = text.find(between);
    if (at == std::string_view::npos) return std::nullopt;
    const auto first = ParseNumber(text.substr(0, at)), second = ParseNumber(text.substr(at + 1));
    return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
}

std::string Shown(std::string_view text) { return qel::PrintableText(text); }

std::string Count(std::size_t number, const char* one, const char* more) {
    return std::to_string(number) + ' ' + (number == 1 ? one : more);
}

std::string Why(const char* otherwise) { return Shown(Utf8(qel::FailureSentence(qel::LastFailure(), otherwise))); }

// A file that ends too early has no number of the system.
Failure LastRefusal(const char* otherwise, Status ofData) {
    const qel::Failure failure = qel::LastFailure();
    const Status ofFile = failure.systemError < 0 ? kCut : kUnreadable;
    const Status status = failure.kind == qel::FailureKind::kData   ? ofData
                          : failure.kind == qel::FailureKind::kFile ? ofFile
                                                                    : kFailed;
    return Failure(Shown(Utf8(qel::FailureSentence(failure, otherwise))), status);
}

Status StatusOf(const CFileException& error) noexcept {
    return error.m_cause == CFileException::endOfFile ? kCut : kUnreadable;
}

Status StatusOf(const CArchiveException& error) noexcept {
    return error.m_cause == CArchiveException::endOfFile ? kCut : kInconsistent;
}

Failure Named(const std::string& file, const Failure& failure) {
    std::error_code missing;
    const bool isFolder = failure.ExitStatus() == kUnreadable && fs::is_directory(file, missing);
    return Failure(Shown(file) + ": " + (isFolder ? "is a folder" : failure.what()), failure.ExitStatus());
}

CString LibraryPath(const std::string& posixPath) {
    std::error_code error;
    const fs::path absolute = fs::absolute(posixPath, error);
    if (error) throw CFileException(CFileException::badPath);
    const CString path = qel::ToLibraryPath(absolute.lexically_normal().native());
    qel::ToPosixPath(path.View());
    return path;
}

CString Path(const std::string& posixPath) {
    return OnFile(posixPath, [&] { return LibraryPath(posixPath); });
}

void Open(CQFile& file, const std::string& path, UINT flags) {
    CFileException error;
    if (file.Open(LibraryPath(path), flags, &error) == 0) throw CFileException(error);
}

std::string ReadStart(const std::string& path) {
    constexpr ULONGLONG kLongest = 1 << 20;
    return OnFile(path, [&] {
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyWrite);
        std::string bytes(static_cast<std::size_t>(std::min(kLongest, file.GetLength())), '\0');
        bytes.resize(file.Read(bytes.data(), static_cast<UINT>(bytes.size())));
        return bytes;
    });
}

void RequireOther(const std::string& target, const std::string& source) {
    std::error_code missing;
    if (fs::equivalent(target, source, missing))
        throw CLI::ValidationError("\"" + target + "\" is to be read and cannot be written");
}

void RequireFolderOf(const std::string& target) {
    std::error_code missing;
    if (const fs::path folder = fs::path(target).parent_path(); !folder.empty() && !fs::is_directory(folder, missing))
        throw Failure(Shown(target) + ": there is no such folder", kUnreadable);
}

void RequireNew(const std::string& target, bool mayReplace, const std::vector<std::string>& sources) {
    for (const std::string& source : sources) RequireOther(target, source);
    const CString name = Path(target);
    std::error_code missing;
    if (fs::is_directory(target, missing)) throw Failure(Shown(target) + ": is a folder", kUnreadable);
    if (!mayReplace && CQFile::IsExist(name) != 0) throw Failure(Shown(target) + ": exists; --force replaces it");
    RequireFolderOf(target);
}

void WriteAsAWhole(const std::string& target, bool mayReplace,
                   const std::function<void(const qel::Descriptor& file)>& write) {
    const CString name = Path(target);
    try {
        qel::Replacement replacement(name.View());
        write(replacement.File());
        mayReplace ? replacement.Commit() : replacement.CommitNew();
    } catch (const CFileException& error) {
        throw Failure(Shown(target) + ": " + error.what());
    }
}

Status Complain(const std::string& line, Status status) {
    std::fprintf(stderr, "qel: %s\n", line.c_str());
    return status;
}

void Print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void Print(const Json& value) { Print(value.dump(2, ' ', false, Json::error_handler_t::replace) + '\n'); }

CLI::Validator WholeNumber(std::int64_t least, std::int64_t most) {
    const std::string ends = std::to_string(least) + " to " + std::to_string(most);
    const auto check = [=](std::string& text) -> std::string {
        const auto number = qel::ReadWholeNumber<std::int64_t>(text);
        if (!number || *number < least || *number > most) return "\"" + text + "\" is not a whole number from " + ends;
        text = std::to_string(*number);
        return {};
    };
    return CLI::Validator(check, ends);
}

CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& path, const std::string& meaning) {
    return command.add_option(name, path, meaning)->required();
}

}  // namespace tool
