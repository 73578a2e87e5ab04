#include "driver/modes.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

constexpr std::array ModeTable{
    Mode{.what = "Update database from ID3",
         .setting = &Settings::ID3Update,
         .needsLibrary = true,
         .indicator = 14,
         .backups = {.database = true},
         .work = &Procedures::UpdateDatabaseFromID3},
    Mode{.what = "Add files to library",
         .setting = &Settings::AddFiles,
         .needsLibrary = true,
         .indicator = 16,
         .work = &Procedures::AddFilesToLibrary},
    Mode{.what = "Write ID3",
         .setting = &Settings::ID3Write,
         .needsLibrary = true,
         .indicator = 13,
         .work = &Procedures::WriteID3},
    Mode{.what = "Build album picker",
         .setting = &Settings::AlbumPicker,
         .indicator = 10,
         .work = &Procedures::BuildAlbumPicker},
    Mode{.what = "Pla to m3u playlists",
         .setting = &Settings::PlaToM3u,
         .indicator = 11,
         .backups = {.playListPath2 = true},
         .work = &Procedures::ConvertPlaToM3u},
    Mode{.what = "Update files for remote reference",
         .setting = &Settings::MakeRemote,
         .indicator = 15,
         .backups = {.database = true, .playListPath = true, .playListPath2 = true},
         .work = &Procedures::MakeRemote},
    Mode{.what = "M3u to pla playlists",
         .setting = &Settings::M3uToPla,
         .indicator = 12,
         .backups = {.playListPath = true},
         .work = &Procedures::ConvertM3uToPla},
    Mode{.what = "Reconcile library and database",
         .setting = &Settings::Reconcile,
         .indicator = 0,
         .backups = {.database = true, .playListPath = true, .playListPath2 = true},
         .work = nullptr},
};

}  // namespace

std::span<const Mode> Modes() {
    return ModeTable;
}

const Mode* SelectMode(const Settings& settings) {
    const auto applies = [&](const Mode& mode) { return mode.Applies(settings); };
    const auto found = std::find_if(ModeTable.begin(), ModeTable.end(), applies);
    return found == ModeTable.end() ? nullptr : &*found;
}

bool WalksLibrary(const Settings& settings) {
    const Mode* const mode = SelectMode(settings);
    return mode != nullptr && mode->setting == &Settings::Reconcile && !settings.PlaylistsOnly;
}

}  // namespace quillon
