#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "changes/preview_tree.h"
#include "platform/clock.h"
#include "platform/files.h"

namespace quillon {

/// What only the disk can tell of a file or folder that is there, by its Windows path.
struct PreviewRights {
    /// Whether the file may be written, or the folder's entries changed. None: yes.
    std::function<bool(const std::string& path)> mayWrite = {};
    /// Whether it is a symbolic link. None: no.
    std::function<bool(const std::string& path)> isLink = {};
};

/// Files over others of which nothing is ever changed: what is written, copied, moved, deleted and
/// made stays in memory, where it can be read, listed and asked for like anything else, and is gone
/// with this object. Folders are copied and moved without a look at what is in them.
///
/// What it does not know: how much room there is, and that a file has further names (links, a
/// second drive for the same folder), which would change with it.
class PreviewFiles : public Files {
  public:
    /// `ground` and `clock` must outlive this object, and this object what it opens.
    PreviewFiles(Files& ground, const Clock& clock, PreviewRights rights = {})
        : ground_(ground), clock_(clock), rights_(std::move(rights)) {}

    bool FolderExists(std::string_view path) override;
    bool FileExists(std::string_view path) override;
    bool IsWithin(std::string_view folder, std::string_view outer) override;
    bool IsSameFile(std::string_view path, std::string_view other) override;
    std::optional<std::string> LocalPath(std::string_view path) override;
    Listing<FolderEntry> SubFolders(std::string_view folder) override;
    Listing<FileEntry> FilesIn(std::string_view folder) override;
    FolderNames NamesIn(std::string_view folder) override;
    FileEntry GetFile(std::string_view path) override;
    void CreateFolder(std::string_view path) override;
    void CopyFile(std::string_view from, std::string_view to, bool overwrite) override;
    void CopyFolder(std::string_view from, std::string_view to) override;
    void DeleteFile(std::string_view path) override;
    void DeleteFolder(std::string_view path) override;
    void Discard(std::string_view path) override;
    void MoveFile(std::string_view from, std::string_view to) override;
    void MoveFolder(std::string_view from, std::string_view to) override;
    std::unique_ptr<TextReader> OpenText(std::string_view path) override;
    std::unique_ptr<TextWriter> CreateText(std::string_view path) override;
    std::unique_ptr<TextBatch> CreateTexts(TextBatch::Done done) override;
    std::unique_ptr<TextWriter> CreateOwnText(std::string_view path) override;
    std::unique_ptr<BinaryReader> OpenBinary(std::string_view path) override;
    /// There is nothing of this object's that could be unfinished.
    void RemoveUnfinished(std::string_view) override {}
    void WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) override;
    void ReplaceBytes(std::string_view path, const FilePiece& seen,
                      std::span<const std::uint8_t> bytes) override;

  private:
    using Node = PreviewNode;
    using Place = PreviewTree::Place;

    bool HasFolder(const WindowsPath& path);
    bool HasFile(const WindowsPath& path);
    bool Has(const WindowsPath& path) { return HasFile(path) || HasFolder(path); }
    /// Failures that stand for what the disk would say.
    [[noreturn]] void RefuseMissing(const WindowsPath& path);
    void RequireFolderAround(const WindowsPath& path);
    void RequireFreeName(const WindowsPath& path);
    void RequireWritable(const Place& place, const WindowsPath& path) const;
    void RequireWritableAround(const WindowsPath& path);
    void RequireMayReplace(const WindowsPath& path);
    std::unique_ptr<Node> FileNode(const WindowsPath& path);
    std::unique_ptr<Node> Take(const WindowsPath& path);
    void PutWritten(const WindowsPath& path, std::string bytes,
                    std::optional<DateTime> modified = {});
    std::unique_ptr<TextWriter> Writer(const WindowsPath& path);

    Files& ground_;
    const Clock& clock_;
    PreviewRights rights_;
    PreviewTree tree_;
};

}  // namespace quillon
