#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date_time.h"
#include "platform/failure.h"

namespace quillon {

/// A file as a folder lists it. `path` is the Windows path, `name` its last component.
struct FileEntry {
    std::string path;
    std::string name;
    std::uint64_t size = 0;  ///< bytes
    DateTime modified;       ///< local time, to the second
    /// When its content, name or rights last became others, by the system's own count, which nobody
    /// sets: whatever is the same file at the same count has not been touched. 0: not known.
    std::int64_t changed = 0;
};

struct FolderEntry {
    std::string path;
    std::string name;
};

/// A folder's files, or its folders, in name order.
template <typename Entry>
struct Listing {
    std::vector<Entry> entries;

    /// Paths of entries that are there but could not be looked at: the disk failed, or a link leads
    /// to where nothing is at present. Each may be a file or a folder. What they stand for is not
    /// gone, and must not be treated as if it were. The adapter reports each as an error, once.
    std::vector<std::string> unseen;

    /// Names of the other kind's entries beside them: of files beside folders, of folders beside
    /// files. Those have not been looked at, so they cost nothing; folders behind links are
    /// missing.
    std::vector<std::string> others;

    auto begin() { return entries.begin(); }
    auto end() { return entries.end(); }
    auto begin() const { return entries.begin(); }
    auto end() const { return entries.end(); }
    std::size_t size() const { return entries.size(); }
    bool empty() const { return entries.empty(); }
};

/// The names of what is directly inside a folder, in no order.
struct FolderNames {
    std::vector<std::string> folders;  ///< without those behind links
    std::vector<std::string> files;
};

/// What was seen of a file's end.
struct FileEnd {
    std::uint64_t size = 0;           ///< of the whole file, in bytes
    std::vector<std::uint8_t> bytes;  ///< the last ones of it
};

/// What was seen of a piece of a file, wherever that lies.
struct FilePiece {
    std::uint64_t size = 0;  ///< of the whole file, in bytes
    std::uint64_t position = 0;
    std::vector<std::uint8_t> bytes;
};

/// Lines of an ANSI text file. Lines may end in CR LF or LF; the last one may lack its end.
class TextReader {
  public:
    virtual ~TextReader() = default;
    virtual bool AtEndOfStream() const = 0;
    /// The next line without its end, as UTF-8. Failure: InputPastEnd; Overflow for a line of more
    /// than 1 MB.
    virtual std::string ReadLine() = 0;
};

/// A text file being written, in the ANSI code page with CR LF line ends. The file takes its name
/// only in Close(), whole; a writer that is destroyed before leaves nothing behind.
class TextWriter {
  public:
    virtual ~TextWriter() = default;
    virtual void Write(std::string_view text) = 0;
    virtual void WriteLine(std::string_view line) = 0;
    /// Bytes as they are, in whatever code page.
    virtual void WriteBytes(std::string_view bytes) = 0;
    /// The file is to have this time and not the present one. Where it cannot be given, it has the
    /// present one.
    virtual void SetModified(DateTime /*local*/) {}
    virtual void Close() = 0;
    /// The same if the answer is yes. It is asked for last, when all has been written and only the
    /// name is still to be taken. Otherwise nothing is left behind and the result is false.
    virtual bool CloseIf(const std::function<bool()>& isWanted) = 0;
};

/// Files that are written one after the other and take their names in groups, whole, so that the
/// disk is waited for once a group and not for each file. What has no name yet when the object is
/// destroyed leaves nothing behind.
class TextBatch {
  public:
    /// Told of each file, in the order in which they were written, when it has its name, or why it
    /// could not get it.
    using Done = std::function<void(const Failure* failure)>;
    /// Far below the number of files that a process may have open.
    static constexpr std::size_t MostWaiting = 128;

    virtual ~TextBatch() = default;
    /// Writes a whole file; replaces the one of that name, if there is one. With the last of
    /// `MostWaiting` files all get their names. Failure: as of CreateText() and its writer, and
    /// then the file is not among those told of.
    virtual void Write(std::string_view path, std::string_view bytes) = 0;
    /// Gives those that wait their names.
    virtual void Close() = 0;
};

/// Bytes of a file, read from any position.
class BinaryReader {
  public:
    virtual ~BinaryReader() = default;
    virtual std::uint64_t Size() const = 0;
    virtual void SetPosition(std::uint64_t position) = 0;
    /// Reads bytes from the position on, which moves past them. Returns how many: fewer than asked
    /// for only at the end.
    virtual std::size_t ReadInto(std::span<std::uint8_t> bytes) = 0;
    /// The same, up to `count` of them.
    std::vector<std::uint8_t> Read(std::size_t count);
};

/// Told of each piece of a file that has been read or copied, in bytes.
using BytesWatch = std::function<void(std::uint64_t bytes)>;

/// A file's way to another name.
struct FileMove {
    std::string from, to;
};

/// Moves that have been announced. Those that have not happened when this object goes will not.
class AnnouncedMoves {
  public:
    virtual ~AnnouncedMoves() = default;
};

/// The file system in Windows terms: paths are `D:\Music\x.mp3` or `\\server\share\x.mp3`, names
/// compare without letter case, listings come in name order. Every operation throws Failure in the
/// runtime's wording, followed by the path. A path with a component that Windows cannot hold is
/// refused (BadFileName) before anything is touched; a drive or share that is not there, or a
/// missing folder on the way, is PathNotFound; a missing file FileNotFound.
class Files {
  public:
    virtual ~Files() = default;

    /// Whether there is a folder (a file) of this path. False where that is certain: nothing has
    /// the name, the path is none, its drive is not mapped. Failure where nobody can tell: an error
    /// of the disk, no right to look, a link that leads to where nothing is at present.
    virtual bool FolderExists(std::string_view path) = 0;
    virtual bool FileExists(std::string_view path) = 0;

    /// Whether the first folder is the second or lies in it, by whatever drive, share or link they
    /// are named; false when either does not exist. Failure as above.
    virtual bool IsWithin(std::string_view folder, std::string_view outer) = 0;

    /// Whether two paths are names of one file, by links of whatever kind: when one is removed, the
    /// other may lead to nothing. False when either does not exist. Failure as above.
    virtual bool IsSameFile(std::string_view path, std::string_view other) = 0;

    /// How other programs of this machine name the file, in the spelling of the disk where it is
    /// there; nothing for a path that leads nowhere here, such as one with a drive that is not
    /// known. Failure as above.
    virtual std::optional<std::string> LocalPath(std::string_view path) = 0;

    /// Folders and files directly inside a folder. Entries that Windows could not show are left out
    /// (the adapter notes each once in the log). Failure: PathNotFound, PermissionDenied; also when
    /// the folder could not be read to its end.
    virtual Listing<FolderEntry> SubFolders(std::string_view folder) = 0;
    virtual Listing<FileEntry> FilesIn(std::string_view folder) = 0;

    /// The same for a look at what no phase works on: as cheap as can be, nothing is noted, and a
    /// folder that cannot be listed has no names.
    virtual FolderNames NamesIn(std::string_view folder) = 0;

    /// Failure: FileNotFound.
    virtual FileEntry GetFile(std::string_view path) = 0;

    /// Failure: FileAlreadyExists.
    virtual void CreateFolder(std::string_view path) = 0;
    /// Copies keep the modification time and appear whole or not at all. Failure:
    /// FileAlreadyExists unless `overwrite`, PermissionDenied onto a folder or onto itself.
    virtual void CopyFile(std::string_view from, std::string_view to, bool overwrite) = 0;
    /// Copies a folder with all that is in it to a new name, where it appears whole or not at all.
    /// Failure: PathNotFound, FileAlreadyExists when there is something of that name,
    /// PermissionDenied into itself, and whatever keeps a single file in it from being copied.
    virtual void CopyFolder(std::string_view from, std::string_view to) = 0;
    /// From now on both tell this of what they have copied; an empty one ends that. Whatever copies
    /// nothing has nothing to tell.
    virtual void WatchCopies(BytesWatch /*watch*/) {}
    /// A write-protected file is not deleted (PermissionDenied).
    virtual void DeleteFile(std::string_view path) = 0;
    /// Deletes a folder with all that is in it; of a symbolic link only the link. A write-protected
    /// file in it is not deleted, and then nothing is (PermissionDenied). Failure: PathNotFound.
    virtual void DeleteFolder(std::string_view path) = 0;
    /// Takes back what this run has just made: a file, write-protected or not, or a folder, which
    /// must be empty. Failure: FileNotFound, PathFileAccess for a folder that holds something.
    virtual void Discard(std::string_view path) = 0;
    /// Renames or moves a file. Failure: FileAlreadyExists when the target is another file.
    virtual void MoveFile(std::string_view from, std::string_view to) = 0;
    /// Says before the first of several MoveFile() which are going to follow, so that whoever
    /// records changes can make all durable at once. `this` must outlive the answer. Failure: none
    /// of them must happen.
    virtual std::unique_ptr<AnnouncedMoves> Announce(std::span<const FileMove> moves);
    /// Renames a folder, at once and whole. Failure: PathNotFound, FileAlreadyExists when the
    /// target is there, PermissionDenied.
    virtual void MoveFolder(std::string_view from, std::string_view to) = 0;

    virtual std::unique_ptr<TextReader> OpenText(std::string_view path) = 0;
    /// Replaces the file of that name, if there is one, when the writer is closed.
    virtual std::unique_ptr<TextWriter> CreateText(std::string_view path) = 0;
    virtual std::unique_ptr<TextBatch> CreateTexts(TextBatch::Done done) = 0;
    /// As CreateText(), for a file that is the program's own: a symbolic link of that name may have
    /// been put there by anybody and is not followed. Failure: PermissionDenied for a link.
    virtual std::unique_ptr<TextWriter> CreateOwnText(std::string_view path) = 0;
    virtual std::unique_ptr<BinaryReader> OpenBinary(std::string_view path) = 0;

    /// Removes what killed runs have left unfinished directly in a folder. Never fails: a folder
    /// that is not there or cannot be read has nothing to remove.
    virtual void RemoveUnfinished(std::string_view folder) = 0;

    /// Writes bytes at a position so near to the end that they reach it or go beyond; without bytes
    /// what was seen from there on is cut off. Otherwise a file never gets shorter. In place, so
    /// links to it stay; what lies before the position and the modification time stay as they are.
    /// When a write fails, what it has changed is put back. Failure, with nothing written:
    /// FileNotFound; PermissionDenied when the file is write-protected or its times could not be
    /// kept; PathFileAccess when it no longer has the size and bytes that were `seen`; DiskFull;
    /// InvalidProcedureCall for a position that would leave a gap or cut the file.
    virtual void WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                          std::span<const std::uint8_t> bytes) = 0;

    /// Puts bytes in the place of a piece; what lies before and behind it stays. As many bytes are
    /// written in place, and put back when that fails; otherwise the file is written anew beside
    /// itself and takes its name whole, so that other links to it keep the old content. The
    /// modification time stays. Failure, with nothing changed: as of WriteEnd();
    /// InvalidProcedureCall for a piece beyond the end.
    virtual void ReplaceBytes(std::string_view path, const FilePiece& seen,
                              std::span<const std::uint8_t> bytes) = 0;
};

/// The bytes of a file, or of all files in a folder, as far as they can be looked at.
std::uint64_t SizeOf(Files& files, const std::string& path);

/// False only where it is certain that there is no such folder.
bool FolderMayExist(Files& files, std::string_view path);

}  // namespace quillon
