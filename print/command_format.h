#pragma once

#include <array>
#include <span>
#include <string_view>

#include "qellib10/print/command.h"

// The form of commands in a job file: one element each, with its numbers as attributes.
namespace qel {

/// A number of a command and its attribute.
struct CommandField {
    const char* name;
    int (*get)(const CQelPrintJobCommand&);
    int ifMissing = 0;
};

inline constexpr std::size_t kMaxCommandFields = 9;
using CommandNumbers = std::array<int, kMaxCommandFields>;

struct CommandFormat {
    int kind;
    const char* name;                      ///< of the element
    std::span<const CommandField> fields;  ///< in the order of the file
    /// Sets the command from the numbers, which are in the order of the fields. Null for a unit, whose number is the
    /// content of the element, and for elements that have a text.
    void (*set)(CQelPrintJobCommand&, const CommandNumbers&);
    /// Sets the command from the numbers and the text of the element. Null for elements that have none.
    void (*setText)(CQelPrintJobCommand&, const CommandNumbers&, const CString& face, const CString& text) = nullptr;
    bool isUtf8 = false;   ///< the text, in the command; else it is in the code page
    bool hasFace = false;  ///< the element has the attribute "font" if the command has a face
};

/// Null for a kind, or an element, that job files do not have.
const CommandFormat* FindCommandFormat(int kind);
const CommandFormat* FindCommandFormat(std::string_view element);

}  // namespace qel
