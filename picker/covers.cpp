#include "picker/covers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>

#include "picker/album_picker.h"
#include "picker/cover_names.h"
#include "picker/folders.h"
#include "picker/placeholder.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "platform/windows_name.h"
#include "run/counted.h"
#include "run/folder_images.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// What a browser shows. Anything else has no business in a folder from which the web server
/// serves, and perhaps runs, files.
bool IsImageName(std::string_view name) {
    constexpr std::array<std::string_view, 6> Endings = {".jpg", ".jpeg", ".gif",
                                                         ".png", ".bmp",  ".webp"};
    const std::string lower = LowerCase(name);
    return std::any_of(Endings.begin(), Endings.end(), [&](std::string_view ending) {
        return lower.ends_with(ending) && lower.size() > ending.size();
    });
}

class CoverCopier {
  public:
    CoverCopier(Run& run, Steps& steps, std::string_view webCoverFolder)
        : run_(run), steps_(steps), folder_(webCoverFolder) {}

    void Copy(std::vector<PickerAlbum>& albums) {
        MakeFolders(run_.files, folder_);
        std::vector<std::string> sources;
        std::vector<CoverImage> all;
        bool isMissing = false;
        for (const PickerAlbum& album : albums) {
            sources.push_back(SourceOf(album.imageFile));
            if (!sources.back().empty())
                all.push_back({sources.back(), NameFor(album, sources.back())});
            isMissing |= sources.back().empty() && !album.imageFile.empty();
        }
        if (isMissing) steps_.Try(PagesStep::CopyCovers, [&] { RequireCoverFolder(); });
        CopyAll(CoverNames(folder_, all));
        for (std::size_t i = 0; i < albums.size(); ++i) {
            const auto found = copied_.find(LowerCase(sources[i]));
            albums[i].coverFile = found == copied_.end() ? PlaceholderName : found->second;
        }
        ProvidePlaceholder();
    }

  private:
    /// Pages are made without it, too, but covers that are out of sight are reported.
    void RequireCoverFolder() const {
        const std::string& folder = run_.settings.AlbumCoverFolder;
        if (!NamesFolder(folder) || run_.files.FolderExists(folder)) return;
        throw Failure(FailureNumber::PathNotFound, folder);
    }

    /// The path of an album's image file; "" when there is none that can be shown. A path that
    /// leads nowhere may be another machine's: the file is then expected in the cover folder.
    std::string SourceOf(const std::string& imageFile) const {
        const std::string name = imageFile.substr(imageFile.find_last_of("\\/") + 1);
        if (!IsImageName(WebSafeName(name)) || EqualIgnoringCase(name, PlaceholderName)) return "";
        const std::string inCoverFolder = run_.settings.AlbumCoverFolder + name;
        for (const std::string& path : {imageFile, inCoverFolder}) {
            if (run_.files.FileExists(path)) return path;
        }
        return "";
    }

    /// What the copy of an album's image is called after. Images in album folders all have the same
    /// few names, so there it is what a cover of the album's own would be called.
    std::string NameFor(const PickerAlbum& album, const std::string& source) const {
        std::string name(LastName(source));
        if (!run_.modern.takesFolderImages || !IsFolderImage(name)) return name;
        const std::string own = album.artist + " - " + album.title + name.substr(name.rfind('.'));
        return IsWindowsName(WebSafeName(own)) ? own : name;
    }

    void CopyAll(const CoverNames& names) {
        for (const CoverCopy& copy : Counted(run_, names.Copies())) {
            run_.ProcessEvents();
            if (run_.AbortRequested) return;
            const bool done = steps_.Try(PagesStep::CopyCovers, [&] {
                CopyFile(copy.source, folder_ + copy.name, copy.contested);
            });
            if (done) copied_.emplace(LowerCase(copy.source), copy.name);
        }
    }

    void CopyFile(const std::string& source, const std::string& target, bool always) {
        if (EqualIgnoringCase(source, target)) return;
        if (!always && IsSame(source, target)) return;
        run_.files.CopyFile(source, target, true);
    }

    bool IsSame(const std::string& source, const std::string& target) {
        if (!run_.files.FileExists(target)) return false;
        const FileEntry from = run_.files.GetFile(source), to = run_.files.GetFile(target);
        return from.size == to.size && from.modified == to.modified;
    }

    /// The household's own placeholder, else the one that is there, else one drawn here: a page
    /// must not show broken images.
    void ProvidePlaceholder() {
        const std::string own = run_.settings.AlbumCoverFolder + std::string(PlaceholderName);
        const std::string target = folder_ + std::string(PlaceholderName);
        steps_.Try(PagesStep::CopyCovers, [&] {
            if (run_.files.FileExists(own)) {
                CopyFile(own, target, false);
            } else if (!run_.files.FileExists(target)) {
                // Every byte has a character in the code page that the writer turns them back with.
                const std::unique_ptr<TextWriter> file = run_.files.CreateText(target);
                file->Write(AnsiToUtf8(std::span<const std::uint8_t>(PlaceholderImage())));
                file->Close();
            }
        });
    }

    Run& run_;
    Steps& steps_;
    std::string folder_;
    std::unordered_map<std::string, std::string> copied_;  ///< names by lower-cased source
};

}  // namespace

void CopyCovers(Run& run, Steps& steps, std::string_view webCoverFolder,
                std::vector<PickerAlbum>& albums) {
    run.ShowItem("2. Copying Covers from Library to Web Server area");
    if (run.AbortRequested) return;
    CoverCopier(run, steps, webCoverFolder).Copy(albums);
}

}  // namespace quillon
