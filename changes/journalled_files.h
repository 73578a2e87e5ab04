#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "changes/change.h"
#include "changes/file_records.h"
#include "platform/files.h"

namespace quillon {

/// Files of which every change is recorded before it happens, with what is needed to take it back.
/// What cannot be recorded does not happen. Reading costs nothing more.
class JournalledFiles : public Files {
  public:
    /// What becomes of what a run destroys.
    struct Keeping {
        /// Takes the folders that are deleted and the files whose content is too large for a
        /// record: a Windows path, made when it is needed, with the folder that it lies in; and the
        /// same below the host folder, as records name it.
        std::string folder;
        std::string shownFolder;
        /// For a file that is to be deleted: where it will be kept, below the host folder; "" where
        /// it is meant to be gone for good. Nothing for files that this does not concern: their
        /// content goes into the record or into the folder.
        std::function<std::optional<std::string>(std::string_view path)> placeOfDeleted = {};
        /// Files of the run itself, which come and go with it, and are not recorded. Folders of
        /// that kind are deleted for good.
        std::function<bool(std::string_view path)> isScratch = {};
        /// When a file was last modified, in nanoseconds since 1970 (UTC). None: nobody knows.
        std::function<std::int64_t(std::string_view path)> exactTimeOf = {};
    };

    /// Content up to this size goes into the record.
    static constexpr std::uint64_t MostInRecord = std::uint64_t{1} << 20U;

    /// `files` and `sink` must outlive this object, and this object what it opens. `last` is the
    /// number of the change before its first.
    JournalledFiles(Files& files, ChangeSink& sink, Keeping keeping, std::uint64_t last = 0)
        : files_(files), records_(sink, last), keeping_(std::move(keeping)) {}

    /// Whether something lies in the folder of `Keeping` now.
    bool HasKept() const { return hasKept_; }

    bool FolderExists(std::string_view path) override { return files_.FolderExists(path); }
    bool FileExists(std::string_view path) override { return files_.FileExists(path); }
    bool IsWithin(std::string_view folder, std::string_view outer) override {
        return files_.IsWithin(folder, outer);
    }
    bool IsSameFile(std::string_view path, std::string_view other) override {
        return files_.IsSameFile(path, other);
    }
    std::optional<std::string> LocalPath(std::string_view path) override {
        return files_.LocalPath(path);
    }
    Listing<FolderEntry> SubFolders(std::string_view folder) override {
        return files_.SubFolders(folder);
    }
    Listing<FileEntry> FilesIn(std::string_view folder) override { return files_.FilesIn(folder); }
    FolderNames NamesIn(std::string_view folder) override { return files_.NamesIn(folder); }
    FileEntry GetFile(std::string_view path) override { return files_.GetFile(path); }
    std::unique_ptr<TextReader> OpenText(std::string_view path) override {
        return files_.OpenText(path);
    }
    std::unique_ptr<BinaryReader> OpenBinary(std::string_view path) override {
        return files_.OpenBinary(path);
    }
    void RemoveUnfinished(std::string_view folder) override { files_.RemoveUnfinished(folder); }

    void CreateFolder(std::string_view path) override;
    void CopyFile(std::string_view from, std::string_view to, bool overwrite) override;
    void CopyFolder(std::string_view from, std::string_view to) override;
    void WatchCopies(BytesWatch watch) override { files_.WatchCopies(std::move(watch)); }
    void DeleteFile(std::string_view path) override;
    /// Moves it away rather, unless the run itself has made it.
    void DeleteFolder(std::string_view path) override;
    void Discard(std::string_view path) override;
    /// Recorded for good before, alone or with the others that have been announced.
    void MoveFile(std::string_view from, std::string_view to) override;
    std::unique_ptr<AnnouncedMoves> Announce(std::span<const FileMove> moves) override;
    void MoveFolder(std::string_view from, std::string_view to) override;
    /// Recorded when the writer is closed: before that no file changes.
    std::unique_ptr<TextWriter> CreateText(std::string_view path) override;
    std::unique_ptr<TextWriter> CreateOwnText(std::string_view path) override;
    std::unique_ptr<TextBatch> CreateTexts(TextBatch::Done done) override;
    void WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) override;
    /// What a power cut may leave in part, and a copy with other bytes, is recorded for good
    /// before.
    void ReplaceBytes(std::string_view path, const FilePiece& seen,
                      std::span<const std::uint8_t> bytes) override;

  private:
    /// A place in the folder of `Keeping`: its Windows path, and as records name it. Its number is
    /// that of the change that it is for.
    struct Place {
        std::string path, shown;
    };

    bool IsScratch(std::string_view path) const {
        return keeping_.isScratch && keeping_.isScratch(path);
    }
    std::unique_ptr<TextWriter> Journalled(std::unique_ptr<TextWriter> writer,
                                           std::string_view path);
    /// The change that gives a file this content; `bytes` only where they are few enough.
    FileChange Written(std::string_view path, FileContent content);
    /// 0 where it is not known.
    std::int64_t ExactTimeOf(std::string_view path);
    /// Size and time, as a look at the folder tells them; nothing where there is no such file.
    std::optional<FileContent> LookOf(std::string_view path);
    /// With what brings the content back.
    std::optional<FileContent> ContentOf(std::string_view path);
    Place NewPlace(std::string_view path);
    void MoveAway(std::string_view folder, const std::string& place);
    bool IsMadeByRun(std::string_view folder) const;
    /// Its record, which gets the number of its group where there is one.
    std::uint64_t PlanMove(std::string_view from, std::string_view to, std::uint64_t group);
    class Announced;

    Files& files_;
    FileRecords records_;
    Keeping keeping_;
    bool hasKept_ = false;
    /// Numbers of the moves that have been recorded and not begun.
    std::map<std::pair<std::string, std::string>, std::uint64_t> announced_;
    std::set<std::string, std::less<>> madeFolders_;  ///< by the run; in small letters
};

}  // namespace quillon
