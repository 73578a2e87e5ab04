#include "covers/embedded_art.h"

#include <memory>
#include <optional>
#include <string_view>

#include "platform/files.h"
#include "platform/windows_name.h"
#include "run/log.h"
#include "run/paths.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

std::string Write(Run& run, const std::string& name, const EmbeddedImage& image) {
    const std::string path = AddBackslash(run.settings.AlbumCoverFolder) + name;
    if (run.files.FileExists(path)) return path;
    const std::unique_ptr<TextWriter> file = run.files.CreateText(path);
    file->WriteBytes({reinterpret_cast<const char*>(image.bytes.data()), image.bytes.size()});
    file->Close();
    return path;
}

/// The picture in a song's tag; it is only read where one is known to be there.
std::optional<EmbeddedImage> ArtOf(Run& run, const std::string& path) {
    if (!run.files.FileExists(path)) return std::nullopt;
    const FileEntry file = run.files.GetFile(path);
    switch (LookForArt(run, file)) {
        case EmbeddedArt::Promised:
            return ReadArt(run, file);
        case EmbeddedArt::TooLarge:
            WriteLog(
                run, LogSource,
                "The picture in " + path + " is too large for an album cover, and is left out");
            NoteNoArt(run, file);
            break;
        case EmbeddedArt::Unknown:
        case EmbeddedArt::None:
            break;
    }
    return std::nullopt;
}

}  // namespace

std::string TakeEmbeddedArt(Run& run, const AlbumRow& album,
                            std::span<const TrackRow* const> songs) {
    if (!NamesFolder(run.settings.AlbumCoverFolder)) return "";
    const std::string stem = album.artist.Text() + " - " + album.title.Text();
    if (!IsWindowsName(stem + ".jpg")) return "";
    for (const TrackRow* const song : songs) {
        const std::optional<EmbeddedImage> image = ArtOf(run, song->soundFile);
        if (image) return Write(run, stem + image->extension, *image);
    }
    return "";
}

}  // namespace quillon
