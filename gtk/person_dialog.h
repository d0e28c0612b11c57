#pragma once

#include <optional>
#include <string>

#include "qellib10/platform/export.h"

using GtkWidget = struct _GtkWidget;

namespace qel {

/// What somebody has typed; UTF-8. Wipe the password after use.
struct PersonTyped {
    std::string name;
    std::string password;
};

/// Asks for a name and a password, for a logon or a signature. What is typed is checked by whoever asks.
///
/// @code
/// GtkWidget* window = nullptr;
/// const auto person = qel::AskPerson(window, "Sign as approved", "mori");
/// if (!person) return;  // cancelled
/// @endcode
///
/// @param owner a widget of the window that the dialog is in front of; null: the active one
/// @param name as it is known already: then only the password is asked for; empty: both
/// @return nothing if cancelled; with a name otherwise
QELLIB10_API std::optional<PersonTyped> AskPerson(GtkWidget* owner, const std::string& title,
                                                  const std::string& name = {});

}  // namespace qel
