#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "backups/backed_up.h"
#include "driver/procedures.h"
#include "run/settings.h"

namespace quillon {

/// The folders that a run may work in: five that settings name, and two of the host's own.
enum class RunFolder {
    LibraryRoot,
    FromFilesPath,
    PlayListPath,
    PlayListPath2,
    AlbumCoverFolder,
    Data,
    Html
};

/// What a run does with a folder.
struct FolderUse {
    bool isRead = false;
    bool isWritten = false;
    bool isEssential = false;  ///< it can do nothing without the folder

    bool IsAny() const { return isRead || isWritten; }
};

/// What a mode does with one folder under a condition; null: always.
struct ModeFolder {
    RunFolder folder;
    FolderUse use;
    bool (*when)(const Settings& settings) = nullptr;
};

/// One of the things a run can be for.
struct Mode {
    std::string_view what;      ///< for messages, e.g. "Add files to library"
    bool Settings::* setting;   ///< what switches it on
    bool needsLibrary = false;  ///< without `LibraryRoot` it is passed over
    std::size_t indicator = 0;  ///< of `aPhase`; not used by the reconcile mode
    std::span<const BackedUp> backups = {};
    std::span<const ModeFolder> folders = {};
    bool needsDrives = false;      ///< it takes drives from the folders' settings
    bool isReserved = false;       ///< it makes its backups, and that is all
    ProcedureName work = nullptr;  ///< null: the reconcile mode, which is made of phases

    bool IsReconciliation() const { return work == nullptr; }
    bool IsOn(const Settings& settings) const { return settings.*setting; }
    bool Applies(const Settings& settings) const {
        return IsOn(settings) && !(needsLibrary && settings.LibraryRoot.empty());
    }
};

/// All modes, in the order in which they are considered.
std::span<const Mode> Modes();

/// The first mode that applies, or null when the settings ask for nothing.
const Mode* SelectMode(const Settings& settings);

/// What a run with these settings does with a folder.
FolderUse UseOf(RunFolder folder, const Settings& settings);

/// Whether a run with these settings walks through the library folders and sweeps.
bool WalksLibrary(const Settings& settings);

}  // namespace quillon
