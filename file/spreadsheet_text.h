#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// A field of a table whose text comes from people or files, for a spreadsheet that will open the table. A text that
/// starts like a formula is computed there, and a formula may start programs or send cells to others: quotation marks
/// around the field do not prevent that. An apostrophe before the text does.
///
/// @code
/// CQCSVFile table;
/// if (!table.Open("users.csv", CFile::modeCreate | CFile::modeReadWrite)) return;
/// table.WriteCSVString(qel::SpreadsheetText("=1+1").c_str());  // "'=1+1"
/// table.Close();
/// @endcode
///
/// Texts that start with = + - @ a tab or CR get the apostrophe; some spreadsheets skip the last two. So do those that
/// start with an apostrophe: taking one off a field that starts with it gives every text back. Numbers are not for
/// this: -0.5 would not be a number any more.
/// @param text in an encoding that has ASCII, such as UTF-8 or code page 932
QELLIB10_API std::string SpreadsheetText(std::string_view text);

}  // namespace qel
