#pragma once

#include <array>
#include <span>
#include <string_view>

#include "qellib10/print/command.h"

// How commands stand in a job file: an element each, its numbers as attributes.
namespace qel {

/// A number of a command and the attribute that it stands in.
struct CommandField {
    const char* name;
    int (*get)(const CQelPrintJobCommand&);
    int ifMissing = 0;
};

inline constexpr std::size_t kMaxCommandFields = 8;
using CommandNumbers = std::array<int, kMaxCommandFields>;

struct CommandFormat {
    int kind;
    const char* name;                      ///< of the element
    std::span<const CommandField> fields;  ///< in the order of the file
    /// Makes a command of the numbers, which are in the order of the fields. Null for a text, which has more to it,
    /// and a unit, whose number is the content of the element.
    void (*set)(CQelPrintJobCommand&, const CommandNumbers&);
};

/// Makes a text of the numbers of its format and what else it has.
void SetText(CQelPrintJobCommand& command, const CommandNumbers& numbers, const CString& face, const CString& text);

/// Null for a kind, or an element, that a job file does not have.
const CommandFormat* FindCommandFormat(int kind);
const CommandFormat* FindCommandFormat(std::string_view element);

}  // namespace qel
