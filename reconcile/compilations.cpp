#include "reconcile/compilations.h"

#include <optional>
#include <utility>

#include "platform/basic_text.h"
#include "platform/files.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/sound_files.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

std::string KeyOf(const std::string& albumArtist, std::string_view album) {
    return LowerCase(albumArtist) + '\0' + LowerCase(Trim(album));
}

}  // namespace

void Compilations::LookBelow(const std::string& folder) {
    if (!run_.modern.readsAllTags || !run_.modern.keepsTrackArtists) return;
    run_.ShowItem("1. Add Files, Look for Albums of several Artists in " + folder);
    const FolderNames names = run_.files.NamesIn(folder);
    const std::string below = AddBackslash(folder);
    for (const std::string& name : names.files) {
        if (run_.AbortRequested) return;
        if (IsSoundFile(name)) Look(below + name);
    }
    for (const std::string& name : names.folders) {
        if (run_.AbortRequested) return;
        LookBelow(below + name);
    }
}

void Compilations::Look(const std::string& path) {
    run_.ProcessEvents();
    std::string albumArtist = ReadAlbumArtist(run_, path);
    if (albumArtist.empty()) return;
    const std::optional<Tag> tag = ReadID3(run_, path);
    if (!tag) return;
    artists_[KeyOf(albumArtist, tag->album)].Add(tag->artist);
    albumArtists_.emplace(path, std::move(albumArtist));
}

std::string Compilations::AlbumArtistOf(const std::string& path) const {
    const auto found = albumArtists_.find(path);
    return found == albumArtists_.end() ? "" : found->second;
}

bool Compilations::IsOfSeveral(const std::string& albumArtist, const std::string& album) const {
    const auto found = artists_.find(KeyOf(albumArtist, album));
    return found != artists_.end() && found->second.AreSeveral();
}

}  // namespace quillon
