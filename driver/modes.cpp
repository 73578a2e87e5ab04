#include "driver/modes.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

constexpr std::span<const BackedUp> Everything = EverythingBackedUp;
constexpr std::span<const BackedUp> DatabaseAlone = Everything.subspan(0, 1);
constexpr std::span<const BackedUp> PlaylistsAlone = Everything.subspan(1, 1);
constexpr std::span<const BackedUp> OtherPlaylistsAlone = Everything.subspan(2, 1);

bool Walks(const Settings& settings) {
    return !settings.PlaylistsOnly;
}
bool IsPlaylistsOnly(const Settings& settings) {
    return settings.PlaylistsOnly;
}
bool ComparesTags(const Settings& settings) {
    return Walks(settings) && settings.ID3Reconcile;
}
bool WritesDifferences(const Settings& settings) {
    return Walks(settings) && settings.ReconcileOption;
}

constexpr std::array FoldersOfAdding{
    ModeFolder{RunFolder::LibraryRoot, {.isWritten = true, .isEssential = true}},
    ModeFolder{RunFolder::FromFilesPath, {.isRead = true, .isEssential = true}},
    ModeFolder{RunFolder::AlbumCoverFolder, {.isWritten = true}},
};
constexpr std::array FoldersOfWritingTags{
    ModeFolder{RunFolder::LibraryRoot, {.isWritten = true, .isEssential = true}},
};
constexpr std::array FoldersOfPicker{
    ModeFolder{RunFolder::AlbumCoverFolder, {.isRead = true}},
    ModeFolder{RunFolder::Html, {.isWritten = true, .isEssential = true}},
};
constexpr std::array FoldersOfConversion{
    ModeFolder{RunFolder::PlayListPath, {.isRead = true, .isEssential = true}},
    ModeFolder{RunFolder::PlayListPath2, {.isWritten = true, .isEssential = true}},
};
constexpr std::array FoldersOfReconciliation{
    ModeFolder{RunFolder::LibraryRoot, {.isRead = true, .isEssential = true}, Walks},
    ModeFolder{RunFolder::LibraryRoot, {.isWritten = true}, ComparesTags},
    ModeFolder{RunFolder::PlayListPath, {.isWritten = true}},
    ModeFolder{RunFolder::PlayListPath, {.isEssential = true}, IsPlaylistsOnly},
    ModeFolder{RunFolder::AlbumCoverFolder, {.isRead = true}, Walks},
    ModeFolder{RunFolder::Data, {.isWritten = true}, WritesDifferences},
};

constexpr std::array ModeTable{
    Mode{.what = "Update database from ID3",
         .setting = &Settings::ID3Update,
         .needsLibrary = true,
         .indicator = 14,
         .backups = DatabaseAlone,
         .work = &Procedures::UpdateDatabaseFromID3},
    Mode{.what = "Add files to library",
         .setting = &Settings::AddFiles,
         .needsLibrary = true,
         .indicator = 16,
         .folders = FoldersOfAdding,
         .work = &Procedures::AddFilesToLibrary},
    Mode{.what = "Write ID3",
         .setting = &Settings::ID3Write,
         .needsLibrary = true,
         .indicator = 13,
         .folders = FoldersOfWritingTags,
         .work = &Procedures::WriteID3},
    Mode{.what = "Build album picker",
         .setting = &Settings::AlbumPicker,
         .indicator = 10,
         .folders = FoldersOfPicker,
         .work = &Procedures::BuildAlbumPicker},
    Mode{.what = "Pla to m3u playlists",
         .setting = &Settings::PlaToM3u,
         .indicator = 11,
         .backups = OtherPlaylistsAlone,
         .folders = FoldersOfConversion,
         .work = &Procedures::ConvertPlaToM3u},
    Mode{.what = "Update files for remote reference",
         .setting = &Settings::MakeRemote,
         .indicator = 15,
         .backups = Everything,
         .needsDrives = true,
         .work = &Procedures::MakeRemote},
    Mode{.what = "M3u to pla playlists",
         .setting = &Settings::M3uToPla,
         .indicator = 12,
         .backups = PlaylistsAlone,
         .isReserved = true,
         .work = &Procedures::ConvertM3uToPla},
    Mode{.what = "Reconcile library and database",
         .setting = &Settings::Reconcile,
         .indicator = 0,
         .backups = Everything,
         .folders = FoldersOfReconciliation,
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

FolderUse UseOf(RunFolder folder, const Settings& settings) {
    FolderUse use;
    const Mode* const mode = SelectMode(settings);
    if (mode == nullptr) return use;
    for (const ModeFolder& row : mode->folders) {
        if (row.folder != folder || (row.when != nullptr && !row.when(settings))) continue;
        use.isRead |= row.use.isRead;
        use.isWritten |= row.use.isWritten;
        use.isEssential |= row.use.isEssential;
    }
    return use;
}

bool WalksLibrary(const Settings& settings) {
    const Mode* const mode = SelectMode(settings);
    return mode != nullptr && mode->IsReconciliation() && !settings.PlaylistsOnly;
}

}  // namespace quillon
