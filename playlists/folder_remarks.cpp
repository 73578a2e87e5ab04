#include "playlists/folder_remarks.h"

#include <algorithm>
#include <array>

#include "platform/basic_text.h"
#include "playlists/playlist_folder.h"
#include "run/paths.h"
#include "run/settings.h"

namespace quillon {
namespace {

/// Files by which a folder is known for one of other things.
constexpr std::array<std::string_view, 3> OtherKinds{".ini", ".mdb", ".mp3"};

bool IsOfOtherKind(const FileEntry& file) {
    return std::any_of(OtherKinds.begin(), OtherKinds.end(), [&file](std::string_view kind) {
        return EqualIgnoringCase(Right(file.name, kind.size()), kind);
    });
}

/// The folder's part of a file's path, with the backslash at its end.
std::string_view FolderPart(std::string_view path) {
    return path.substr(0, path.find_last_of("\\/") + 1);
}

/// Collects what a folder is besides.
class Remarks {
  public:
    Remarks(Files& files, const std::string& folder) : files_(files), folder_(folder) {}

    void CompareWith(std::string_view other, const std::string& what) {
        if (!other.empty() && IsSameFolder(files_, folder_, other)) Add("is " + what);
    }

    void CompareWithDrive() {
        if (EqualIgnoringCase(folder_, GetDrive(folder_) + '\\')) Add("is the root of a drive");
    }

    void CompareWithLibrary(std::string_view library) {
        if (files_.IsWithin(folder_, library)) {
            Add("lies in the library, where its backups look like artists");
        } else if (files_.IsWithin(library, folder_)) {
            Add("holds the library");
        }
    }

    void LookAt(const Listing<FileEntry>& files) {
        const auto other = std::find_if(files.begin(), files.end(), IsOfOtherKind);
        if (other != files.end()) Add("holds other files, " + other->name + " for one");
    }

    std::string Text() const {
        if (text_.empty()) return "";
        return "PlayListPath (" + folder_ + ") " + text_ +
               ". Only playlists are changed there, but each backup copies everything in it. "
               "Name a folder that holds playlists alone";
    }

  private:
    void Add(const std::string& clause) {
        if (text_.find(clause) == std::string::npos) text_ += (text_.empty() ? "" : ", ") + clause;
    }

    Files& files_;
    const std::string& folder_;
    std::string text_;
};

}  // namespace

std::string PlaylistFolderRemark(Files& files, const Settings& settings,
                                 std::string_view hostFolder,
                                 const std::vector<FolderEntry>& libraryFolders,
                                 const Listing<FileEntry>& content) {
    Remarks remarks(files, settings.PlayListPath);
    remarks.CompareWithDrive();
    remarks.CompareWith(hostFolder, "the host folder, with settings and log");
    remarks.CompareWith(FolderPart(settings.Nirvis_CDJ_DB), "the folder of the database");
    for (const FolderEntry& library : libraryFolders)
        remarks.CompareWithLibrary(library.path);
    remarks.LookAt(content);
    return remarks.Text();
}

}  // namespace quillon
