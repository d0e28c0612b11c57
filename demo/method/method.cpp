#include "demo/method/method.h"

#include <algorithm>

namespace titration {
namespace {

const MethodItem* Find(const Method& method, const std::string& section, const std::string& key) {
    const auto found = std::ranges::find_if(
        method, [&](const MethodItem& item) { return item.section == section && item.key == key; });
    return found != method.end() ? &*found : nullptr;
}

void AddDifference(CQDiffList& list, const MethodItem& item, const std::string& before, const std::string& after) {
    CDiffItem difference;
    difference.SetName((item.section + "/" + item.key).c_str());
    difference.SetBefore(before.c_str());
    difference.SetAfter(after.c_str());
    list.AddDiffItem(difference);
}

std::string Shown(const CString& text) { return text.IsEmpty() ? "nothing" : std::string(text); }

}  // namespace

bool HasNames(const std::string& section) {
    return std::ranges::find(kNamedSections, section) != std::end(kNamedSections);
}

std::string TextOf(const Method& method, const std::string& section, const std::string& key,
                   const std::string& otherwise) {
    const MethodItem* const item = Find(method, section, key);
    return item != nullptr ? item->text : otherwise;
}

std::string PlaceOf(const Method& method, const std::string& section, const std::string& key) {
    const MethodItem* const item = Find(method, section, key);
    const bool hasLine = item != nullptr && item->line > 0;
    return (hasLine ? "line " + std::to_string(item->line) + ", [" : "[") + section + "] " + key;
}

CQDiffList Differences(const Method& before, const Method& after) {
    CQDiffList list;
    for (const MethodItem& item : before) {
        const std::string text = TextOf(after, item.section, item.key);
        if (text != item.text) AddDifference(list, item, item.text, text);
    }
    for (const MethodItem& item : after) {
        if (Find(before, item.section, item.key) == nullptr) AddDifference(list, item, "", item.text);
    }
    return list;
}

std::string Listed(const CQDiffList& differences, const std::string& indent) {
    std::string lines;
    CDiffItem item;
    for (int i = 0; differences.GetDiffItemIndex(i, &item) != 0; ++i) {
        lines += indent + std::string(item.GetName()) + ": " + Shown(item.GetBefore()) + " -> " +
                 Shown(item.GetAfter()) + "\n";
    }
    return lines;
}

}  // namespace titration
