#include "verify_lists.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "file_list.h"
#include "trail_options.h"

namespace tool {
namespace {

constexpr std::string_view kOtherKinds[] = {"link", "pipe", "socket", "device"};

std::string ListedKind(const FileReport& report) { return (report.isSealed ? "sealed-" : "") + report.kind; }

FileList ListOf(std::vector<CheckedFile>& files) {
    FileList list;
    for (CheckedFile& file : files) {
        if (file.report.finding == kUnreadable) continue;
        const std::optional<qel::FileHash> hash = qel::HashFile(Path(file.path).View());
        if (hash) {
            list.emplace(file.name, ListedFile{ListedKind(file.report), *hash});
        } else {
            file.report.finding = kUnreadable;
            file.report.detail = Why("cannot be read");
        }
    }
    return list;
}

// Of a link it has where that leads; the rest has no content.
void AddOthers(FileList& list, std::vector<CheckedFile>& files, const std::vector<Tree::Other>& others,
               const std::string& folder) {
    for (const Tree::Other& other : others) {
        std::error_code gone;
        const std::string target = other.kind == "link" ? std::filesystem::read_symlink(other.path, gone).string() : "";
        const std::string name = NameBelow(folder, other.path);
        list.emplace(name, ListedFile{other.kind, {target.size(), qel::HashText(target)}});
        files.push_back({other.path, false, {other.kind, false, kGood, "is no file"}, name});
    }
}

// A file with the text of a link, or an empty one in the place of a pipe, is another thing.
bool IsSame(const ListedFile& before, const ListedFile& now) {
    const auto isFile = [](const ListedFile& listed) {
        return std::ranges::find(kOtherKinds, listed.kind) == std::end(kOtherKinds);
    };
    return before.hash == now.hash && (before.kind == now.kind || (isFile(before) && isFile(now)));
}

void Compare(std::vector<CheckedFile>& files, const std::string& folder, const FileList& now, FileList before) {
    for (CheckedFile& file : files) {
        auto known = before.extract(file.name);
        const auto found = now.find(file.name);
        if (found == now.end()) continue;  // it cannot be read
        if (known.empty()) {
            file.report.Raise(kAdded, "is not in the list");
        } else if (!IsSame(known.mapped(), found->second)) {
            file.report.Raise(kChanged, "is not what the list has");
        }
    }
    for (const auto& [name, missing] : before) {
        const std::string path = (std::filesystem::path(folder) / name).string();
        files.push_back({path, false, {missing.kind, false, kMissing, "is in the list, and not there"}, name});
    }
}

}  // namespace

void RequireTreeForLists(const ListOptions& options, const std::vector<std::string>& paths) {
    std::error_code error;
    if (paths.size() != 1 || !std::filesystem::is_directory(paths[0], error))
        throw CLI::ValidationError("a list is that of one folder");
    for (const std::string& list : {options.saveList, options.against}) RequireOutside(list, paths);
    if (!options.saveList.empty()) RequireNew(options.saveList, options.force, {options.against});
}

void UseLists(std::vector<CheckedFile>& files, const std::vector<Tree::Other>& others, const std::string& folder,
              const ListOptions& options) {
    const FileList before = options.against.empty() ? FileList() : ReadList(options.against);
    FileList now = ListOf(files);
    AddOthers(now, files, others, folder);
    if (!options.saveList.empty()) SaveList(options.saveList, options.force, now);
    if (!options.against.empty()) Compare(files, folder, now, before);
}

}  // namespace tool
