#include <algorithm>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "changes/preview_files.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

/// What can be asked of the files of a preview without opening one.
namespace quillon {
namespace {

using Kind = PreviewNode::Kind;

std::optional<WindowsPath> PathIn(std::string_view text) try {
    return ParseWindowsPath(text);
} catch (const Failure&) {
    return std::nullopt;
}

std::string LastNameOf(std::string_view path) {
    return std::string(path.substr(path.rfind('\\') + 1));
}

/// What the preview has to say of a name that the disk has in the folder, if anything.
const PreviewNode* ChangedChild(const PreviewNode& folder, std::string_view name) {
    const auto child = folder.children.find(LowerCase(name));
    if (child == folder.children.end() || child->second->isAsItWas) return nullptr;
    return child->second.get();
}

void DropChanged(const PreviewNode& folder, std::vector<std::string>& names) {
    std::erase_if(names,
                  [&](const std::string& name) { return ChangedChild(folder, name) != nullptr; });
}

template <typename Visit>
void ForEachNew(const PreviewNode& folder, Kind kind, Visit visit) {
    for (const auto& [key, child] : folder.children) {
        if (child->kind == kind && !child->isAsItWas) visit(*child);
    }
}

/// What the disk has in a folder, as it is in the preview.
template <typename Entry>
void ApplyChanges(const PreviewNode& folder, const WindowsPath& shown, Listing<Entry>& listing) {
    constexpr bool IsOfFiles = std::is_same_v<Entry, FileEntry>;
    std::erase_if(listing.entries,
                  [&](const Entry& entry) { return ChangedChild(folder, entry.name) != nullptr; });
    std::erase_if(listing.unseen, [&](const std::string& path) {
        return ChangedChild(folder, LastNameOf(path)) != nullptr;
    });
    DropChanged(folder, listing.others);
    ForEachNew(folder, IsOfFiles ? Kind::File : Kind::Folder, [&](const PreviewNode& node) {
        Entry entry;
        entry.path = shown.Child(node.name);
        entry.name = node.name;
        if constexpr (IsOfFiles) {
            entry.size = node.content.Size();
            entry.modified = node.modified;
        }
        listing.entries.push_back(std::move(entry));
    });
    ForEachNew(folder, IsOfFiles ? Kind::Folder : Kind::File,
               [&](const PreviewNode& node) { listing.others.push_back(node.name); });
    std::ranges::sort(listing.entries, WindowsNameLess, &Entry::name);
}

/// The paths as they would be asked for: the disk may have the folder elsewhere.
template <typename Entry>
void ShowBelow(const WindowsPath& shown, Listing<Entry>& listing) {
    for (Entry& entry : listing.entries)
        entry.path = shown.Child(entry.name);
    for (std::string& path : listing.unseen)
        path = shown.Child(LastNameOf(path));
}

/// The folder of a path as the disk has it, where that has anything to say.
template <typename Entry, typename List>
Listing<Entry> ListIn(PreviewTree& tree, const WindowsPath& shown, List list) {
    const PreviewTree::Place place = tree.Find(shown);
    if (place.IsNothing() || place.IsFile())
        throw Failure(FailureNumber::PathNotFound, shown.Text());
    Listing<Entry> listing;
    if (!place.ground.empty()) listing = list(place.ground);
    if (place.ground != shown.Text()) ShowBelow(shown, listing);
    if (place.node != nullptr) ApplyChanges(*place.node, shown, listing);
    return listing;
}

}  // namespace

bool PreviewFiles::HasFolder(const WindowsPath& path) {
    const Place place = tree_.Find(path);
    if (place.node != nullptr) return place.IsFolder();
    return !place.ground.empty() && ground_.FolderExists(place.ground);
}

bool PreviewFiles::HasFile(const WindowsPath& path) {
    const Place place = tree_.Find(path);
    if (place.node != nullptr) return place.IsFile();
    return !place.ground.empty() && ground_.FileExists(place.ground);
}

bool PreviewFiles::FolderExists(std::string_view path) {
    const std::optional<WindowsPath> parsed = PathIn(path);
    return parsed && HasFolder(*parsed);
}

bool PreviewFiles::FileExists(std::string_view path) {
    const std::optional<WindowsPath> parsed = PathIn(path);
    return parsed && HasFile(*parsed);
}

bool PreviewFiles::IsSameFile(std::string_view path, std::string_view other) {
    if (!FileExists(path) || !FileExists(other)) return false;
    const Place one = tree_.Find(ParseWindowsPath(path));
    const Place two = tree_.Find(ParseWindowsPath(other));
    if (one.ground.empty() || two.ground.empty()) return one.node == two.node;
    return ground_.IsSameFile(one.ground, two.ground);
}

std::optional<std::string> PreviewFiles::LocalPath(std::string_view path) {
    return ground_.LocalPath(path);
}

bool PreviewFiles::IsWithin(std::string_view folder, std::string_view outer) {
    if (!FolderExists(folder) || !FolderExists(outer)) return false;
    // Of folders that are where the disk has them, only the disk knows all their names.
    const auto isInItsPlace = [this](const WindowsPath& path) {
        return EqualIgnoringCase(tree_.Find(path).ground, path.Text());
    };
    const WindowsPath wanted = ParseWindowsPath(outer);
    WindowsPath inner = ParseWindowsPath(folder);
    while (!EqualIgnoringCase(inner.Text(), wanted.Text())) {
        if (isInItsPlace(inner) && isInItsPlace(wanted))
            return ground_.IsWithin(inner.Text(), wanted.Text());
        if (inner.rest.empty()) return false;
        inner = FolderAround(inner);
    }
    return true;
}

Listing<FolderEntry> PreviewFiles::SubFolders(std::string_view folder) {
    return ListIn<FolderEntry>(tree_, ParseWindowsPath(folder), [this](const std::string& path) {
        return ground_.SubFolders(path);
    });
}

Listing<FileEntry> PreviewFiles::FilesIn(std::string_view folder) {
    return ListIn<FileEntry>(tree_, ParseWindowsPath(folder),
                             [this](const std::string& path) { return ground_.FilesIn(path); });
}

FolderNames PreviewFiles::NamesIn(std::string_view folder) {
    const std::optional<WindowsPath> parsed = PathIn(folder);
    if (!parsed) return {};
    const Place place = tree_.Find(*parsed);
    FolderNames names;
    if (!place.ground.empty() && !place.IsFile()) names = ground_.NamesIn(place.ground);
    if (!place.IsFolder()) return names;
    DropChanged(*place.node, names.folders);
    DropChanged(*place.node, names.files);
    ForEachNew(*place.node, Kind::Folder,
               [&](const Node& node) { names.folders.push_back(node.name); });
    ForEachNew(*place.node, Kind::File,
               [&](const Node& node) { names.files.push_back(node.name); });
    return names;
}

FileEntry PreviewFiles::GetFile(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const Place place = tree_.Find(parsed);
    if (place.IsNothing()) RefuseMissing(parsed);
    if (place.IsFolder()) throw Failure(FailureNumber::FileNotFound, parsed.Text());
    const WindowsPath around = FolderAround(parsed);
    if (place.IsFile()) {
        const Node& node = *place.node;
        return {around.Child(node.name), node.name, node.content.Size(), node.modified};
    }
    FileEntry entry = ground_.GetFile(place.ground);
    entry.path = around.Child(entry.name);
    return entry;
}

}  // namespace quillon
