#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "changes/preview_content.h"
#include "platform/date_time.h"
#include "platform/windows_path.h"

namespace quillon {

/// A name in a folder that is not, or need not be, what the disk has there.
struct PreviewNode {
    enum class Kind { Gone, File, Folder };
    using Children = std::unordered_map<std::string, std::unique_ptr<PreviewNode>>;

    Kind kind = Kind::Gone;
    std::string name = {};
    /// Windows path of the file or folder on the disk that it is, whatever it was called there; ""
    /// for what the preview has made.
    std::string ground = {};
    PreviewContent content = {};  ///< of a file
    DateTime modified = {};       ///< of a file
    /// Of a folder what is different from the one on the disk: by name in small letters.
    Children children = {};
    /// A folder that is on the disk under this name, and is here only for what is in it.
    bool isAsItWas = false;

    /// Another file or folder with the same in it.
    std::unique_ptr<PreviewNode> Copy() const;
};

/// All that is different from the disk.
class PreviewTree {
  public:
    /// What a path means: a node, or what the disk has at a path, or nothing.
    struct Place {
        PreviewNode* node = nullptr;  ///< never one that is gone
        std::string ground;           ///< "" where the disk has nothing to say

        bool IsNothing() const { return node == nullptr && ground.empty(); }
        bool IsFile() const { return node != nullptr && node->kind == PreviewNode::Kind::File; }
        bool IsFolder() const { return node != nullptr && node->kind == PreviewNode::Kind::Folder; }
    };

    Place Find(const WindowsPath& path);

    /// Sets what the path means, whose folder is there. The name is that of the node.
    void Put(const WindowsPath& path, std::unique_ptr<PreviewNode> node);
    /// Takes away what is there; the node that it was, or one that stands for what the disk has at
    /// `ground`.
    std::unique_ptr<PreviewNode> Take(const WindowsPath& path, PreviewNode::Kind kind,
                                      const std::string& ground);

  private:
    PreviewNode& FolderOf(const WindowsPath& path);
    PreviewNode& Root(const std::string& root);

    PreviewNode::Children roots_;
};

/// The path of what has this name in a folder.
std::string PathBelow(std::string_view folder, std::string_view name);

/// The folder that a path is in, and its name there. The path must not be a root.
WindowsPath FolderAround(const WindowsPath& path);
std::string NameIn(const WindowsPath& path);

}  // namespace quillon
