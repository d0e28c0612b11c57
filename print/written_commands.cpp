#include "qellib10/print/written_commands.h"

#include <charconv>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_text.h"
#include "qellib10/print/command_format.h"

namespace qel {
namespace {

constexpr std::string_view kRoot = "<printjob", kBegin = "<commands>", kEnd = "</commands></printjob>\r\n";

// Removes expected parts from the start of a text; if they are not there, nothing is removed.
class Scan {
public:
    explicit Scan(std::string_view text) : m_rest(text) {}

    bool IsAtEnd() const { return m_rest.empty(); }
    bool Take(std::string_view expected) {
        if (!m_rest.starts_with(expected)) return false;
        m_rest.remove_prefix(expected.size());
        return true;
    }
    bool Take(int& number) {
        const char* const begin = m_rest.data();
        const auto [end, error] = std::from_chars(begin, begin + m_rest.size(), number);
        if (error != std::errc()) return false;
        m_rest.remove_prefix(static_cast<std::size_t>(end - begin));
        return true;
    }
    /// The text before the first of these characters; all of it if there is none.
    template <char... kEnds> std::string_view TakeUntil() {
        std::size_t length = 0;
        while (length < m_rest.size() && ((m_rest[length] != kEnds) && ...)) ++length;
        const std::string_view found = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        return found;
    }

private:
    std::string_view m_rest;
};

bool TakeNumbers(Scan& scan, const CommandFormat& format, CommandNumbers& numbers) {
    std::size_t count = 0;
    for (const CommandField& field : format.fields) {
        if (!scan.Take(" ") || !scan.Take(field.name) || !scan.Take("=\"") || !scan.Take(numbers[count++]) ||
            !scan.Take("\""))
            return false;
    }
    return true;
}

// A value whose characters need no interpretation.
bool TakeFont(Scan& scan, CString& face) {
    if (!scan.Take(" font=\"")) return true;
    const std::string_view value = scan.TakeUntil<'"', '&', '<', '\t', '\r', '\n'>();
    face = CString(FromUtf8(value));
    return scan.Take("\"");
}

// The text between the tags, if there is any.
bool TakeText(Scan& scan, const CommandFormat& format, CString& text) {
    if (scan.Take("/>")) return true;
    if (!scan.Take(">")) return false;
    const std::string_view written = scan.TakeUntil<'<'>();
    if (written.empty() || written.find('>') != std::string_view::npos) return false;
    const std::string utf8 = WithoutReferences(WithPlainLineEnds(written));
    text = CString(format.isUtf8 ? utf8 : FromUtf8(utf8));
    return scan.Take("</") && scan.Take(format.name) && scan.Take(">");
}

bool TakeCommand(Scan& scan, CQelPrintJobCommand& command) {
    if (!scan.Take("<")) return false;
    const CommandFormat* const format = FindCommandFormat(scan.TakeUntil<' ', '>', '/'>());
    if (format == nullptr) return false;
    CommandNumbers numbers{};
    if (format->setText != nullptr) {
        CString face, text;
        if (format->hasFace && !TakeFont(scan, face)) return false;
        if (!TakeNumbers(scan, *format, numbers) || !TakeText(scan, *format, text)) return false;
        format->setText(command, numbers, face, text);
        return true;
    }
    if (format->kind == CQelPrintJobCommand::kUnit) {
        int unit = 0;
        if (!scan.Take(">") || !scan.Take(unit) || !scan.Take("</unit>")) return false;
        command.SetUnit(unit);
        return true;
    }
    if (format->set == nullptr || !TakeNumbers(scan, *format, numbers)) return false;
    format->set(command, numbers);
    return scan.Take("/>");
}

}  // namespace

std::optional<WrittenCommands> ReadWrittenCommands(std::string_view file) {
    const std::size_t begin = file.find(kBegin);
    if (begin == std::string_view::npos || !file.starts_with(kRoot) || !file.ends_with(kEnd)) return std::nullopt;
    // The file has no comments, sections and the like, so this really is a tag.
    const std::string_view before = file.substr(0, begin + kBegin.size());
    if (before.find("<!") != std::string_view::npos || before.find("<?") != std::string_view::npos) return std::nullopt;
    const std::string_view body = file.substr(before.size(), file.size() - before.size() - kEnd.size());
    if (!IsUtf8OfXml(body)) return std::nullopt;

    WrittenCommands written;
    try {
        for (Scan scan(body); !scan.IsAtEnd();) {
            CQelPrintJobCommand command;
            if (!TakeCommand(scan, command)) return std::nullopt;
            written.commands.Add(command);
        }
    } catch (const DataError&) {  // an invalid reference
        return std::nullopt;
    }
    written.rest.append(before).append(kEnd);
    return written;
}

}  // namespace qel
