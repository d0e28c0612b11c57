#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace titration {

/// The fields of a line, without blanks around them.
using Row = std::vector<std::string>;

/// The lines of a text, each split into its fields.
struct Rows {
    std::vector<Row> rows;
    char separator = ';';
};

/// Splits @p text at the separator that qel::CsvReader finds. A line is a row: a quotation mark without a closing one
/// hides no measured values of the lines after it.
/// @throws Failure for a line that cannot be read
Rows SplitAsWritten(std::string_view text);

/// "separated by semicolons"
std::string SeparatedBy(char separator);

/// A line without fields, or one that says itself that it is a comment: it begins with #, !, %, // or, where
/// that does not separate, with a semicolon
bool IsBlankOrComment(const Row& row);

/// The fields as they were split, each in quotation marks: the first few of a long line.
std::string Shown(const Row& row);

}  // namespace titration
