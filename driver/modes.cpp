#include "driver/modes.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

bool HasLibrary(const Settings& settings) {
    return !settings.LibraryRoot.empty();
}

constexpr std::array ModeTable{
    Mode{.what = "Update database from ID3",
         .applies = [](const Settings& s) { return HasLibrary(s) && s.ID3Update; },
         .indicator = 14,
         .backups = {.database = true},
         .work = &Procedures::UpdateDatabaseFromID3},
    Mode{.what = "Add files to library",
         .applies = [](const Settings& s) { return HasLibrary(s) && s.AddFiles; },
         .indicator = 16,
         .backups = {},
         .work = &Procedures::AddFilesToLibrary},
    Mode{.what = "Write ID3",
         .applies = [](const Settings& s) { return HasLibrary(s) && s.ID3Write; },
         .indicator = 13,
         .backups = {},
         .work = &Procedures::WriteID3},
    Mode{.what = "Build album picker",
         .applies = [](const Settings& s) { return s.AlbumPicker; },
         .indicator = 10,
         .backups = {},
         .work = &Procedures::BuildAlbumPicker},
    Mode{.what = "Pla to m3u playlists",
         .applies = [](const Settings& s) { return s.PlaToM3u; },
         .indicator = 11,
         .backups = {.playListPath2 = true},
         .work = &Procedures::ConvertPlaToM3u},
    Mode{.what = "Update files for remote reference",
         .applies = [](const Settings& s) { return s.MakeRemote; },
         .indicator = 15,
         .backups = {.database = true, .playListPath = true, .playListPath2 = true},
         .work = &Procedures::MakeRemote},
    Mode{.what = "M3u to pla playlists",
         .applies = [](const Settings& s) { return s.M3uToPla; },
         .indicator = 12,
         .backups = {.playListPath = true},
         .work = &Procedures::ConvertM3uToPla},
    Mode{.what = "Reconcile library and database",
         .applies = [](const Settings& s) { return s.Reconcile; },
         .indicator = 0,
         .backups = {.database = true, .playListPath = true, .playListPath2 = true},
         .work = nullptr},
};

}  // namespace

std::span<const Mode> Modes() {
    return ModeTable;
}

const Mode* SelectMode(const Settings& settings) {
    const auto applies = [&](const Mode& mode) { return mode.applies(settings); };
    const auto found = std::find_if(ModeTable.begin(), ModeTable.end(), applies);
    return found == ModeTable.end() ? nullptr : &*found;
}

}  // namespace quillon
