// qel xml: documents in plain and enciphered files.
#include <span>

#include "file_check.h"
#include "seal_check.h"

namespace tool {
namespace {

struct Options {
    std::string file, path, text, target;
    bool asXml = false, count = false, force = false, json = false;
};

// A file's content.
class Document : public CCryptXMLDocument {
public:
    /// @throws Failure
    std::vector<BYTE> Bytes(bool enciphered) {
        CMemFile file;
        if ((enciphered ? SaveCryptXMLFile(file) : SavePlainXMLFile(file)) == 0)
            throw LastRefusal("cannot be written", kFailed);
        return file.Detach();
    }
};

bool IsEnciphered(const std::string& path) {
    const CString name = Path(path);
    return OnFile(path, [&] {
        CFile file(name, CFile::modeRead | CFile::shareDenyNone);
        char first = 1;
        return file.Read(&first, 1) == 1 && first == '\0';
    });
}

void Load(CCryptXMLDocument& document, const std::string& path) {
    constexpr const char* kNone = "not a well-formed document";
    OnFile(path, [&] {
        const Unsealed file(path, CFile::shareDenyNone);
        if (document.LoadXMLFile(file.Name(), 1) == 0) throw LastRefusal(kNone, kMalformed);
        if (document.GetTagCount(".") < 0) throw Failure(kNone, kMalformed);  // an empty file is loaded too
    });
}

long CountOf(const CCryptXMLDocument& document, const std::string& path) {
    const long count = document.GetTagCount(ExactText(path));
    if (count < 0) throw CLI::ValidationError("\"" + path + "\" is not a path");
    return count;
}

void Show(const Options& options) {
    CCryptXMLDocument document;
    Load(document, options.file);
    Print(Utf8(document.GetXMLString().View()));
}

void Get(const Options& options) {
    CCryptXMLDocument document;
    Load(document, options.file);
    const CString path = ExactText(options.path);
    const long count = CountOf(document, options.path);
    Json json{{"file", options.file}, {"path", options.path}};
    std::string text = std::to_string(count);
    if (options.count) {
        json["count"] = count;
    } else {
        CString found;
        if ((options.asXml ? document.GetNodeXml(path, found) : document.GetNodeText(path, found)) == 0)
            throw Failure(Shown(options.file) + ": has no \"" + Shown(options.path) + "\"");
        text = Utf8(found.View());
        json[options.asXml ? "xml" : "text"] = text;
    }
    options.json ? Print(json) : Print(text + '\n');
}

// Under the document's lock, in the file's own form.
void Set(const Options& options) {
    const CString text = ExactText(options.text);
    RequireUnsealed(options.file);
    CCryptXMLDocument document;
    Load(document, options.file);
    CountOf(document, options.path);
    document.SetCryptMode(IsEnciphered(options.file) ? 1 : 0);
    if (document.LockFile(Path(options.file), 1, 0) == 0)
        throw Failure(Shown(options.file) + ": cannot be changed: " + Why("it is in use"), kUnreadable);
    if (document.SetNodeText(ExactText(options.path), text) == 0) {
        document.LockRollback();
        throw CLI::ValidationError("\"" + options.path + "\" names nothing that can be made");
    }
    if (document.LockCommit() == 0) throw Failure(Shown(options.file) + ": " + Why("cannot be written"));
}

void Convert(const Options& options, bool encipher) {
    RequireNew(options.target, options.force, {options.file});
    if (IsEnciphered(options.file) == encipher)
        throw Failure(Shown(options.file) + (encipher ? ": is enciphered already" : ": is not enciphered"));
    Document document;
    Load(document, options.file);
    const std::vector<BYTE> bytes = OnFile(options.target, [&] { return document.Bytes(encipher); });
    WriteAsAWhole(options.target, options.force, [&](const qel::Descriptor& target) {
        qel::WriteFully(target, std::as_bytes(std::span(bytes)), options.target);
    });
}

}  // namespace

void AddXml(CLI::App& app, Status&) {
    CLI::App* const command = app.add_subcommand("xml", "Show and change documents, plain or enciphered");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, void (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        AddFile(*action, "FILE", options->file, "The document");
        action->callback([options, run] { run(*options); });
        return action;
    };
    const auto addPath = [&](CLI::App* action) {
        action->add_option("PATH", options->path, "From the root element, such as Limits/Item[2] or Item/@unit")
            ->required();
    };
    add("show", "Write the document", Show);
    CLI::App* const get = add("get", "Write the text of a node", Get);
    addPath(get);
    CLI::Option* const asXml = get->add_flag("--xml", options->asXml, "Write the node itself");
    get->add_flag("--count", options->count, "Write how many nodes the path has")->excludes(asXml);
    get->add_flag("--json", options->json, "Write JSON");
    CLI::App* const set = add("set", "Change the text of a node, which is made when missing", Set);
    addPath(set);
    set->add_option("TEXT", options->text, "The new text")->required();
    for (CLI::App* const action :
         {add("decipher", "Write a plain copy", [](const Options& given) { Convert(given, false); }),
          add("encipher", "Write an enciphered copy", [](const Options& given) { Convert(given, true); })}) {
        AddFile(*action, "TARGET", options->target, "The file to write");
        action->add_flag("--force", options->force, "Replace a file that exists");
    }
}

}  // namespace tool
