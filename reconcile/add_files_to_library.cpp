#include "reconcile/add_files_to_library.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/files.h"
#include "reconcile/adding.h"
#include "reconcile/file_list.h"
#include "run/counted.h"
#include "run/disc_folders.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/sound_files.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class AddingStep { LookForObjections = 1, AddAll = 3 };

// How much of the whole has been done: files that lie loose in the source, then its folders, which
// are visited twice.
constexpr double EndOfLooseFiles = 0.2, EndOfFirstVisit = 0.6;

constexpr std::string_view UnknownName = "Unknown";

bool IsImage(const FileEntry& file) {
    constexpr std::array<std::string_view, 3> Endings{".jpg", ".gif", ".jpeg"};
    if (IsCompanion(file.name)) return false;
    const std::string name = LowerCase(file.name);
    return std::any_of(Endings.begin(), Endings.end(),
                       [&name](std::string_view ending) { return name.ends_with(ending); });
}

/// The path of the first image, "" when there is none.
std::string FindCover(const Listing<FileEntry>& files) {
    const auto found = std::find_if(files.begin(), files.end(), IsImage);
    return found == files.end() ? "" : found->path;
}

/// Adds what is below the source. What cannot be looked at does not affect the rest.
class AddingWalk {
    enum class FolderStep { Files = 1, SubFolders = 2 };

  public:
    AddingWalk(Adding& adding, Steps& steps) : adding_(adding), run_(adding.run), steps_(steps) {}

    /// How far it has come shows in the outermost folder alone. `outerCover` is the image beside a
    /// disc folder. A folder is left out once all that is in it has come in by its own tags.
    /// Whether it has.
    bool AddFolder(std::string_view artist, std::string_view album, const std::string& folder,
                   bool isOutermost = false, const std::string& outerCover = "") {
        if (settled_.contains(folder)) return true;
        steps_.Concerning(folder);
        if (!MayBeAdded(folder)) return false;
        Listing<FileEntry> files;
        if (!steps_.TryAs("AddFolder", FolderStep::Files,
                          [&] { files = run_.files.FilesIn(folder); }))
            return false;
        std::optional<Share> share;
        if (isOutermost) share.emplace(run_, 0, EndOfLooseFiles);
        std::string cover = FindCover(files);
        if (cover.empty()) cover = outerCover;
        bool isSettled = AddFilesIn(files, artist, album, cover, isOutermost);
        share.reset();
        if (isOutermost) share.emplace(run_, EndOfLooseFiles, EndOfFirstVisit);
        Listing<FolderEntry> folders;
        isSettled &= ListFolders(folder, folders) && folders.unseen.empty();
        if (isOutermost) run_.StartCounting(folders.size());
        for (const FolderEntry& subfolder : folders) {
            if (run_.AbortRequested) return false;
            isSettled &= IsDisc(subfolder) ? AddFolder(artist, album, subfolder.path, false, cover)
                                           : AddFolder(artist, subfolder.name, subfolder.path);
            if (isOutermost) run_.CountDone();
        }
        if (isSettled) settled_.insert(folder);
        return isSettled;
    }

    /// The folders in a folder, none where it cannot be listed.
    std::vector<FolderEntry> SubFolders(const std::string& folder) {
        Listing<FolderEntry> folders;
        ListFolders(folder, folders);
        return std::move(folders.entries);
    }

    /// A disc's folder is neither an artist nor an album.
    bool IsDisc(const FolderEntry& folder) const {
        return run_.modern.joinsDiscs && DiscOfFolder(folder.name).has_value();
    }

  private:
    /// A link may lead into the library from a source that lies elsewhere.
    bool MayBeAdded(const std::string& folder) {
        bool isInLibrary = false;
        const bool known = steps_.TryAs("AddFolder", FolderStep::Files, [&] {
            isInLibrary = run_.files.IsWithin(folder, run_.settings.LibraryRoot);
        });
        if (isInLibrary)
            LogError(run_, LogSource, "AddFolder, " + folder + " belongs to the library already");
        return known && !isInLibrary;
    }

    bool ListFolders(const std::string& folder, Listing<FolderEntry>& folders) {
        steps_.Concerning(folder);
        return steps_.TryAs("AddFolder", FolderStep::SubFolders,
                            [&] { folders = run_.files.SubFolders(folder); });
    }

    /// Whether all of them have come in by their own tags.
    bool AddFilesIn(const Listing<FileEntry>& files, std::string_view artist,
                    std::string_view album, const std::string& cover, bool isCounted) {
        bool areSettled = files.unseen.empty();
        if (isCounted) run_.StartCounting(files.size());
        for (const FileEntry& file : files) {
            if (IsSoundFile(file.name)) {
                run_.ShowItem("1. Add File " + file.path);
                if (run_.AbortRequested) return false;
                areSettled &= AddFile(adding_, artist, album, file, cover);
            }
            if (isCounted) run_.CountDone();
        }
        return areSettled;
    }

    std::unordered_set<std::string> settled_;  ///< paths of folders
    Adding& adding_;
    Run& run_;
    Steps& steps_;
};

/// Whether a folder holds music, so many levels down. What cannot be listed may hold some.
bool HoldsMusic(Run& run, const std::string& folder, int depth) {
    const Listing<FileEntry> files = run.files.FilesIn(folder);
    const auto isMusic = [](const FileEntry& file) { return IsSoundFile(file.name); };
    if (!files.unseen.empty() || std::ranges::any_of(files.entries, isMusic)) return true;
    if (depth == 0) return false;
    const Listing<FolderEntry> folders = run.files.SubFolders(folder);
    return std::ranges::any_of(folders.entries, [&](const FolderEntry& subfolder) {
        return HoldsMusic(run, subfolder.path, depth - 1);
    });
}

/// How many of the tool's own tracks are stored below a folder.
std::size_t TracksBelow(Run& run, std::string_view folder) {
    const std::unique_ptr<RecordSet> rows = run.connection->Query(
        "SELECT Tracks.SoundFile FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
        "WHERE Albums.Player=1001");
    const std::string beginning = LowerCase(AddBackslash(folder));
    std::size_t count = 0;
    for (; !rows->IsEof(); rows->MoveNext())
        count += LowerCase(rows->Text("SoundFile")).find(beginning) != std::string::npos ? 1U : 0U;
    return count;
}

/// Whether the library's drive is not there: files copied to where it would be mounted are lost to
/// sight as soon as it is.
bool IsOutOfSight(Run& run, const std::string& root) {
    if (!run.removals.limits.Brake || run.removals.allAllowed) return false;
    constexpr int Albums = 2, Discs = 3;
    const int depth = run.modern.joinsDiscs ? Discs : Albums;
    return TracksBelow(run, root) > 0 && !HoldsMusic(run, root, depth);
}

/// What stands in the way of adding anything, "" when nothing does.
std::string Objection(Run& run) {
    const std::string& source = run.settings.FromFilesPath;
    const std::string& root = run.settings.LibraryRoot;
    if (source.empty()) return "Source path for files to be added is null";
    if (!run.files.FolderExists(source)) return "Source path " + source + " does not exist";
    if (!run.files.FolderExists(root))
        return "AddFilesToLibrary, No folder at library root " + root;
    if (run.files.IsWithin(source, root)) {
        return "AddFilesToLibrary, Source path " + source + " lies in the library " + root +
               ", which would be copied into itself";
    }
    if (run.files.IsWithin(root, source)) {
        return "AddFilesToLibrary, The library " + root + " lies in the source path " + source +
               " and would be copied into itself";
    }
    if (IsOutOfSight(run, root)) {
        return "AddFilesToLibrary, Nothing is added: " + root +
               " holds no music at all, and the database has tracks there. See to the drives and "
               "folders and run again. If the music is gone for good, 'quillon run "
               "--allow-removals' adds the files once";
    }
    return "";
}

}  // namespace

void AddFilesToLibrary(Run& run) {
    Steps steps(run, "AddFilesToLibrary");
    std::string objection;
    const std::string& source = run.settings.FromFilesPath;
    steps.Concerning(source);
    if (!steps.Try(AddingStep::LookForObjections, [&] { objection = Objection(run); })) return;
    if (!objection.empty()) {
        LogError(run, LogSource, objection);
        return;
    }
    steps.Concerning({});
    steps.Try(AddingStep::AddAll, [&] {
        Adding adding(run);
        adding.compilations.LookBelow(source);
        AddingWalk walk(adding, steps);
        // Every sub-folder is visited twice, first with no artist and then as an artist of its own:
        // untagged files are found under both, as in libraries that were filled so far. Others come
        // out the same both times.
        walk.AddFolder(UnknownName, UnknownName, source, true);
        if (run.AbortRequested) return;
        const Share share(run, EndOfFirstVisit, 1);
        for (const FolderEntry& subfolder : Counted(run, walk.SubFolders(source))) {
            if (run.AbortRequested) return;
            if (!walk.IsDisc(subfolder))
                walk.AddFolder(subfolder.name, UnknownName, subfolder.path);
        }
    });
}

}  // namespace quillon
