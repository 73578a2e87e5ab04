#include "reconcile/add_files_to_library.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/basic_text.h"
#include "platform/files.h"
#include "reconcile/adding.h"
#include "reconcile/file_list.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/sound_files.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view UnknownName = "Unknown";

bool IsImage(const FileEntry& file) {
    constexpr std::array<std::string_view, 3> Endings{".jpg", ".gif", ".jpeg"};
    const std::string name = LowerCase(file.name);
    return std::any_of(Endings.begin(), Endings.end(),
                       [&name](std::string_view ending) { return name.ends_with(ending); });
}

/// The path of the first image, "" when there is none.
std::string FindCover(const Listing<FileEntry>& files) {
    const auto found = std::find_if(files.begin(), files.end(), IsImage);
    return found == files.end() ? "" : found->path;
}

/// Adds what is below a folder. How far it has come shows in the outermost one alone.
void AddFolder(Adding& adding, std::string_view artist, std::string_view album,
               const std::string& folder, bool isOutermost = false) {
    Run& run = adding.run;
    Steps steps(run, "AddFolder");
    steps.Try(1, [&] {
        // A link may lead there from a source that lies elsewhere.
        if (run.files.IsWithin(folder, run.settings.LibraryRoot)) {
            LogError(run, LogSource, "AddFolder, " + folder + " belongs to the library already");
            return;
        }
        const Listing<FileEntry> files = run.files.FilesIn(folder);
        const std::string cover = FindCover(files);
        if (isOutermost) run.StartCounting(files.size());
        for (const FileEntry& file : files) {
            if (IsSoundFile(file.name)) {
                run.ShowItem("1. Add File " + file.path);
                if (run.AbortRequested) return;
                AddFile(adding, artist, album, file.path, cover);
            }
            if (isOutermost) run.CountDone();
        }
        const Listing<FolderEntry> subfolders = run.files.SubFolders(folder);
        if (isOutermost) run.StartCounting(subfolders.size());
        for (const FolderEntry& subfolder : subfolders) {
            if (run.AbortRequested) return;
            AddFolder(adding, artist, subfolder.name, subfolder.path);
            if (isOutermost) run.CountDone();
        }
    });
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
    return "";
}

}  // namespace

void AddFilesToLibrary(Run& run) {
    if (const std::string objection = Objection(run); !objection.empty()) {
        LogError(run, LogSource, objection);
        return;
    }
    Steps steps(run, "AddFilesToLibrary");
    steps.Try(3, [&run] {
        const std::string& source = run.settings.FromFilesPath;
        Adding adding(run);
        // Every sub-folder is visited twice, first with no artist and then as an artist of its own:
        // untagged files are found under both, as in libraries that were filled so far.
        AddFolder(adding, UnknownName, UnknownName, source, true);
        for (const FolderEntry& subfolder : Counted(run, run.files.SubFolders(source))) {
            if (run.AbortRequested) return;
            AddFolder(adding, subfolder.name, UnknownName, subfolder.path);
        }
    });
}

}  // namespace quillon
