#include "qellib10/platform/shell/desktop_entry.h"

namespace qel {
namespace {

constexpr std::string_view kOurKey = "X-QELLIB10-Link=";

// A value in the form of key files.
std::string Value(std::string_view text) {
    std::string value;
    for (const char c : text) {
        switch (c) {
            case '\n':
                value += "\\n";
                break;
            case '\r':
                value += "\\r";
                break;
            case '\t':
                value += "\\t";
                break;
            case '\\':
                value += "\\\\";
                break;
            default:
                c == ' ' && value.empty() ? value += "\\s" : value += c;
        }
    }
    return value;
}

// One word of a command line, used literally.
std::string Quoted(std::string_view word) {
    std::string quoted = "\"";
    for (const char c : word) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
        if (c == '%') quoted += '%';
        quoted += c;
    }
    return quoted += '"';
}

std::string FileUrl(std::string_view path) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    constexpr std::string_view kPlain = "/-._~ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::string url = "file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (kPlain.find(c) != std::string_view::npos) {
            url += c;
        } else {
            url.append(1, '%').append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
        }
    }
    return url;
}

}  // namespace

std::string DesktopEntry::Text() const {
    std::string text = "[Desktop Entry]\n";
    const auto line = [&](std::string_view key, std::string_view value) {
        text.append(key).append(Value(value)).append(1, '\n');
    };
    line(kOurKey, link);  // near the start, because a comment may have any length
    line("Type=", isProgram ? "Application" : "Link");
    line("Name=", name);
    if (!comment.empty()) line("Comment=", comment);
    isProgram ? line("Exec=", Quoted(posixPath)) : line("URL=", FileUrl(posixPath));
    if (isProgram) line("Terminal=", "false");
    return text;
}

bool DesktopEntry::IsOurs(std::string_view text) {
    return text.find('\n' + std::string(kOurKey)) != std::string_view::npos;
}

}  // namespace qel
