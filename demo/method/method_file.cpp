#include "demo/method/method_file.h"

#include <map>

#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

CString Place(const char* section, const char* key) { return CCryptXMLDocumentObject::AppendNode(section, key); }

// Names are addressed by number: they may be invalid in XML.
CString ItemPlace(const std::string& section, long number, const char* part) {
    const CString item = CCryptXMLDocumentObject::AppendNodeKey("item", std::to_string(number).c_str());
    return Place(Place(section.c_str(), item), part);
}

Method ReadMethod(const CCryptXMLDocument& document) {
    Method method;
    CString text;
    for (const auto& [section, key] : kKeys) {
        if (document.GetNodeText(Place(section, key), text) != 0) method.push_back({section, key, std::string(text)});
    }
    CString name;
    for (const std::string section : kNamedSections) {
        for (long i = 1; document.GetNodeText(ItemPlace(section, i, "name"), name) != 0; ++i) {
            if (document.GetNodeText(ItemPlace(section, i, "value"), text) == 0)
                throw Failure("a name in " + section + " has no value");
            method.push_back({section, std::string(name), std::string(text)});
        }
    }
    return method;
}

void WriteMethod(const Method& method, CCryptXMLDocument& document) {
    const auto set = [&](const CString& place, const std::string& text) {
        if (document.SetNodeText(place, text.c_str()) == 0)
            throw Failure(std::string(place) + ": " + Why("cannot be written"));
    };
    document.SetXMLString("<method/>");
    std::map<std::string, long> counts;
    for (const MethodItem& item : method) {
        if (HasNames(item.section)) {
            const long number = ++counts[item.section];
            set(ItemPlace(item.section, number, "name"), item.key);
            set(ItemPlace(item.section, number, "value"), item.text);
        } else {
            set(Place(item.section.c_str(), item.key.c_str()), item.text);
        }
    }
}

}  // namespace

MethodFile::MethodFile(const std::string& path) : m_name(CQFile::GetFilenameFromPath(path.c_str())) {
    constexpr int kNoWait = 1, kCreate = 1;
    if (m_document.LockFile(path.c_str(), kNoWait, kCreate) == 0)
        throw Failure(m_name + ": " + Why("cannot be opened for writing"));
    About(m_name, [&] { m_kept = ReadMethod(m_document); });
}

Method MethodFile::Read(const std::string& path) {
    constexpr int kNoWait = 1;
    CCryptXMLDocument document;
    const std::string name(CQFile::GetFilenameFromPath(path.c_str()));
    if (document.LoadXMLFile(path.c_str(), kNoWait) == 0) throw Failure(name + ": " + Why("is not a document"));
    return About(name, [&] { return ReadMethod(document); });
}

void MethodFile::Keep(const Method& method) {
    About(m_name, [&] { WriteMethod(method, m_document); });
    if (m_document.LockCommit() == 0) throw Failure(m_name + ": " + Why("cannot be written"));
}

}  // namespace titration
