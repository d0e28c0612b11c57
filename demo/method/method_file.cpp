#include "demo/method/method_file.h"

#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

CString Place(const char* section, const char* key) { return CCryptXMLDocumentObject::AppendNode(section, key); }

// Variables are addressed by number: a variable's name may be invalid in XML.
CString VariablePlace(long number, const char* part) {
    const CString item = CCryptXMLDocumentObject::AppendNodeKey("item", std::to_string(number).c_str());
    return Place(Place(kVariables, item), part);
}

Method ReadMethod(const CCryptXMLDocument& document) {
    Method method;
    CString text;
    for (const auto& [section, key] : kKeys) {
        if (document.GetNodeText(Place(section, key), text) != 0) method.push_back({section, key, std::string(text)});
    }
    CString name;
    for (long i = 1; document.GetNodeText(VariablePlace(i, "name"), name) != 0; ++i) {
        if (document.GetNodeText(VariablePlace(i, "value"), text) == 0) throw Failure("a variable has no value");
        method.push_back({kVariables, std::string(name), std::string(text)});
    }
    return method;
}

void WriteMethod(const Method& method, CCryptXMLDocument& document) {
    const auto set = [&](const CString& place, const std::string& text) {
        if (document.SetNodeText(place, text.c_str()) == 0)
            throw Failure(std::string(place) + ": " + Why("cannot be written"));
    };
    document.SetXMLString("<method/>");
    long variables = 0;
    for (const MethodItem& item : method) {
        if (item.section == kVariables) {
            ++variables;
            set(VariablePlace(variables, "name"), item.key);
            set(VariablePlace(variables, "value"), item.text);
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
