#include "changes/preview_tree.h"

#include <algorithm>
#include <utility>

#include "platform/basic_text.h"

namespace quillon {
namespace {

/// Takes the first name off the names between slashes.
std::string_view TakeName(std::string_view& names) {
    const std::size_t end = std::min(names.find('/'), names.size());
    const std::string_view name = names.substr(0, end);
    names.remove_prefix(std::min(end + 1, names.size()));
    return name;
}

std::string WithBackslashes(std::string_view names) {
    std::string text(names);
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::unique_ptr<PreviewNode> FolderAsItWas(std::string_view name, std::string ground) {
    auto folder = std::make_unique<PreviewNode>();
    folder->kind = PreviewNode::Kind::Folder;
    folder->name = name;
    folder->ground = std::move(ground);
    folder->isAsItWas = true;
    return folder;
}

}  // namespace

std::unique_ptr<PreviewNode> PreviewNode::Copy() const {
    auto copy = std::make_unique<PreviewNode>();
    copy->kind = kind;
    copy->name = name;
    copy->content = content;
    copy->modified = modified;
    if (kind == Kind::Folder) copy->ground = ground;
    copy->isAsItWas = isAsItWas;
    for (const auto& [key, child] : children)
        copy->children.emplace(key, child->Copy());
    return copy;
}

PreviewTree::Place PreviewTree::Find(const WindowsPath& path) {
    const auto root = roots_.find(LowerCase(path.root));
    if (root == roots_.end()) return {nullptr, path.Text()};
    PreviewNode* node = root->second.get();
    std::string_view rest = path.rest;
    while (!rest.empty()) {
        if (node->kind != PreviewNode::Kind::Folder) return {};
        const std::string_view below = rest;
        const auto child = node->children.find(LowerCase(TakeName(rest)));
        if (child == node->children.end()) {
            if (node->ground.empty()) return {};
            return {nullptr, PathBelow(node->ground, WithBackslashes(below))};
        }
        node = child->second.get();
    }
    if (node->kind == PreviewNode::Kind::Gone) return {};
    return {node, node->ground};
}

PreviewNode& PreviewTree::Root(const std::string& root) {
    std::unique_ptr<PreviewNode>& node = roots_[LowerCase(root)];
    if (!node) node = FolderAsItWas(root, root + '\\');
    return *node;
}

/// Of a folder that is there.
PreviewNode& PreviewTree::FolderOf(const WindowsPath& path) {
    PreviewNode* folder = &Root(path.root);
    const WindowsPath around = FolderAround(path);
    std::string_view rest = around.rest;
    while (!rest.empty()) {
        const std::string_view name = TakeName(rest);
        std::unique_ptr<PreviewNode>& child = folder->children[LowerCase(name)];
        if (!child) child = FolderAsItWas(name, PathBelow(folder->ground, name));
        folder = child.get();
    }
    return *folder;
}

void PreviewTree::Put(const WindowsPath& path, std::unique_ptr<PreviewNode> node) {
    FolderOf(path).children[LowerCase(NameIn(path))] = std::move(node);
}

std::unique_ptr<PreviewNode> PreviewTree::Take(const WindowsPath& path, PreviewNode::Kind kind,
                                               const std::string& ground) {
    std::unique_ptr<PreviewNode>& place = FolderOf(path).children[LowerCase(NameIn(path))];
    std::unique_ptr<PreviewNode> taken = std::exchange(place, std::make_unique<PreviewNode>());
    if (taken) return taken;
    taken = std::make_unique<PreviewNode>();
    taken->kind = kind;
    taken->ground = ground;
    return taken;
}

std::string PathBelow(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.ends_with('\\')) path += '\\';
    path += name;
    return path;
}

WindowsPath FolderAround(const WindowsPath& path) {
    const std::size_t slash = path.rest.rfind('/');
    return {path.root, slash == std::string::npos ? "" : path.rest.substr(0, slash)};
}

std::string NameIn(const WindowsPath& path) {
    return path.rest.substr(path.rest.rfind('/') + 1);
}

}  // namespace quillon
