#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/files.h"
#include "platform/portable/folder_lister.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/safe_file.h"
#include "platform/portable/safe_folder.h"

namespace quillon {

/// Files on a system with local paths, shown in Windows terms. Writers must not outlive it.
class PortableFiles : public Files {
  public:
    /// Takes a file that is to be deleted (its local path, and its Windows path in the spelling of
    /// the disk) to another place; false when the file may be deleted for good.
    using TakeOver = std::function<bool(const std::string& local, const WindowsPath& shown)>;

    /// `note` gets a line for each entry that listings leave out, once.
    PortableFiles(PathResolver& resolver, NoteSink note)
        : resolver_(resolver), lister_(std::move(note)) {}

    /// From now on files to be deleted are offered to this first.
    void OnDelete(TakeOver takeOver) { takeOver_ = std::move(takeOver); }

    /// The path in the spelling that the disk has.
    WindowsPath AsOnDisk(std::string_view path);

    /// From now on listings, too, remove what killed runs have left unfinished. Not for a mere look
    /// at the library.
    void ClearUnfinished() { lister_.ClearUnfinished(); }

    /// From now on names that CopyFile() gives to new files may be lost in a power cut until
    /// SyncNames(), which every other change of files calls before it changes anything. Whoever
    /// changes by other means what relies on a copy, such as a database, calls it before, too.
    void LetNamesWait() { namesMayWait_ = true; }
    void SyncNames();

    /// Waits until all that has been changed is on the disk: before, a power cut may leave the old
    /// bytes where WriteEnd() and ReplaceBytes() have written over them, and old names. Throws
    /// Failure.
    void SyncChanges();

    /// When a file was last modified, in nanoseconds since 1970 (UTC); 0 where there is none. Both
    /// throw Failure.
    std::int64_t ExactTimeOf(std::string_view path);
    void SetExactTime(std::string_view path, std::int64_t time);

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
    void WatchCopies(BytesWatch watch) override { copyWatch_ = std::move(watch); }
    void DeleteFile(std::string_view path) override;
    void DeleteFolder(std::string_view path) override;
    void Discard(std::string_view path) override;
    void MoveFile(std::string_view from, std::string_view to) override;
    void MoveFolder(std::string_view from, std::string_view to) override;
    std::unique_ptr<TextReader> OpenText(std::string_view path) override;
    std::unique_ptr<TextWriter> CreateText(std::string_view path) override {
        return CreateText(path, SafeFile::Existing::Replace);
    }
    std::unique_ptr<TextWriter> CreateOwnText(std::string_view path) override {
        return CreateText(path, SafeFile::Existing::ReplaceOwn);
    }
    std::unique_ptr<TextBatch> CreateTexts(TextBatch::Done done) override;
    std::unique_ptr<BinaryReader> OpenBinary(std::string_view path) override;
    void RemoveUnfinished(std::string_view folder) override;
    void WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) override;
    void ReplaceBytes(std::string_view path, const FilePiece& seen,
                      std::span<const std::uint8_t> bytes) override;

  private:
    /// Removes, before the first file is written into a folder (local path), the unfinished files
    /// that killed runs have left there.
    void RemoveLeftoversOnce(const std::string& folder);
    /// The local path of a file that is going to be written.
    std::string LocalToWrite(const WindowsPath& path);
    void Copy(std::string_view from, std::string_view to, bool overwrite, bool nameMayWait);
    void CopyInto(SafeFolder& copy, const std::string& from, const std::string& inner,
                  const std::string& shown);
    std::unique_ptr<TextWriter> CreateText(std::string_view path, SafeFile::Existing existing);
    WindowsPath AsItIs(const WindowsPath& path, const std::string& local) const;
    /// Whether something of this kind has the path.
    bool Exists(std::string_view path, LocalKind kind);
    void NoteWrittenOver(const FileHandle& file, std::string local);
    /// A file or folder of this local path has got the name, or has it no more.
    void NoteRenamed(const std::string& local) { renamedIn_.insert(FolderOf(local)); }
    void FlushAllOf(const std::string& folder, std::set<FileIdentity>& flushed);

    PathResolver& resolver_;
    FolderLister lister_;
    TakeOver takeOver_;
    BytesWatch copyWatch_;
    std::unordered_set<std::string> withoutLeftovers_;  ///< local paths of folders
    bool namesMayWait_ = false;
    /// Local paths of files whose content may not be on the disk yet; one of each file system is
    /// enough where a flush takes all others along.
    std::map<FileIdentity, std::string> writtenOver_;
    std::unordered_set<std::string> waitingNames_;  ///< local paths of the folders that have them
    std::unordered_set<std::string> renamedIn_;     ///< the same of names that may not be there yet
};

}  // namespace quillon
