#include "demo/curve/table_doubts.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include <qellib10/qellib10.h>

#include "demo/support/text_file.h"

namespace titration {
namespace {

constexpr std::size_t kMinimumBefore = 4, kMaximumInDoubt = 4;  // points
constexpr double kMaximumJump = 5;                              // intervals
constexpr std::string_view kDigits = "0123456789";

// What the numbers of a column show about one sign, comma or point.
struct Sign {
    bool isDecimal = false;
    std::size_t grouping = 0;  // the first line in which it may set thousands apart, 0: none
};

struct Signs {
    Sign comma, point;
    bool hasWholeNumbers = false;
};

// Whether 1 to 3 digits are before the sign at @p at and 3 digits after it.
bool MayGroup(std::string_view number, std::size_t at) {
    const std::size_t first = number.find_first_of(kDigits);
    if (first >= at || at - first > 3 || number[first] == '0') return false;
    const std::size_t end = std::min(number.find_first_not_of(kDigits, at + 1), number.size());
    const bool hasExponent = end < number.size() && (number[end] == 'e' || number[end] == 'E');
    return end - at == 4 && !hasExponent;
}

void Note(std::string_view field, std::size_t line, Signs& signs) {
    const std::string_view number = field.substr(0, field.find_last_of(kDigits) + 1);  // without its unit
    const std::size_t comma = number.rfind(','), point = number.rfind('.');
    constexpr std::size_t kNone = std::string_view::npos;
    if (comma == kNone && point == kNone) {
        signs.hasWholeNumbers = true;
        return;
    }
    const bool isComma = point == kNone || (comma != kNone && comma > point);
    const std::size_t at = isComma ? comma : point;
    Sign& sign = isComma ? signs.comma : signs.point;
    if (number.find(number[at]) != at) {
        signs.hasWholeNumbers = true;  // "1,234,567"
    } else if ((isComma ? point : comma) != kNone || !MayGroup(number, at)) {
        sign.isDecimal = true;
    } else if (sign.grouping == 0) {
        sign.grouping = line;
    }
}

// The line with a number of the column that has two meanings, 0: none. @param other what the other column shows
std::size_t TwoMeanings(const Signs& signs, const Signs& other) {
    const auto isInDoubt = [&](const Sign& sign, const Sign& opposite, const Sign& otherSign,
                               const Sign& otherOpposite) {
        if (sign.grouping == 0 || sign.isDecimal) return false;
        if (opposite.isDecimal) return true;
        if (otherSign.isDecimal) return false;
        return &sign == &signs.comma || signs.hasWholeNumbers || otherOpposite.isDecimal;
    };
    if (isInDoubt(signs.comma, signs.point, other.comma, other.point)) return signs.comma.grouping;
    if (isInDoubt(signs.point, signs.comma, other.point, other.comma)) return signs.point.grouping;
    return 0;
}

// "5 215", not "5 mL"
bool HasBlankInside(std::string_view field) {
    const std::size_t blank = field.find(' ');
    return blank != std::string_view::npos && kDigits.find(field[blank + 1]) != std::string_view::npos;
}

void RequireNoBlanks(const Table& table, const std::vector<Row>& rows, const Columns& columns) {
    for (const std::size_t line : table.lines) {
        const Row& row = rows[line - 1];
        for (const std::size_t column : {columns.volume, columns.signal}) {
            if (HasBlankInside(row[column])) RefuseBlankInNumber(row, line, row[column]);
        }
    }
}

std::string Text(double value) { return std::string(qel::NumberText(value)); }

// The first of the last points that go back from the volume that is furthest from the first one; else their number.
std::size_t FirstBack(const std::vector<double>& volumes) {
    std::size_t furthest = 0;
    for (std::size_t i = 1; i < volumes.size(); ++i) {
        if (std::abs(volumes[i] - volumes[0]) >= std::abs(volumes[furthest] - volumes[0])) furthest = i;
    }
    const std::size_t back = furthest + 1;
    return back >= kMinimumBefore && volumes.size() - back <= kMaximumInDoubt ? back : volumes.size();
}

}  // namespace

void RequireOneMeaning(const Table& table, const Rows& split, const Columns& columns) {
    Signs volumes, signals;
    for (const std::size_t line : table.lines) {
        const Row& row = split.rows[line - 1];
        for (const std::size_t column : {columns.volume, columns.signal}) {
            Note(row[column], line, column == columns.volume ? volumes : signals);
        }
    }
    const bool hasDecimalPoints = volumes.point.isDecimal || signals.point.isDecimal;
    if (split.separator == ',' && !hasDecimalPoints) RequireNoBlanks(table, split.rows, columns);
    if (const std::size_t line = TwoMeanings(volumes, signals))
        RefuseThousands(split.rows[line - 1], line, split.rows[line - 1][columns.volume]);
    if (const std::size_t line = TwoMeanings(signals, volumes))
        RefuseThousands(split.rows[line - 1], line, split.rows[line - 1][columns.signal]);
}

void RequireNoSummary(const Table& table, const std::vector<Row>& rows, const Columns& columns, bool isOnlyTable) {
    const std::vector<double>& volumes = table.curve.volume;
    const std::size_t count = volumes.size();
    const auto refuse = [&](std::size_t point, const std::string& why) {
        RefuseDoubtfulPoint(rows[table.lines[point] - 1], table.lines[point], why, isOnlyTable);
    };
    const std::size_t back = FirstBack(volumes);
    if (back < count) refuse(back, "the volume goes back from " + Text(volumes[back - 1]));
    if (!columns.haveNames) {
        const std::size_t after = FirstBack({volumes.rbegin(), volumes.rend()});
        if (after < count) refuse(count - 1 - after, "the volume goes back after it");
    }

    double widest = 0;
    std::size_t fewest = static_cast<std::size_t>(-1);
    for (std::size_t i = 0; i < count; ++i) {
        const double interval = i > 0 ? std::abs(volumes[i] - volumes[i - 1]) : 0;
        const std::size_t fields = rows[table.lines[i] - 1].size();
        if (i >= kMinimumBefore && i + kMaximumInDoubt >= count) {
            if (widest > 0 && interval > kMaximumJump * widest)
                refuse(i, "its volume is further from " + Text(volumes[i - 1]) + " than " + Text(kMaximumJump) +
                              " times the widest interval before");
            if (fields < fewest) refuse(i, "it has fewer fields than each line before it");
        }
        widest = std::max(widest, interval);
        fewest = std::min(fewest, fields);
    }
}

}  // namespace titration
