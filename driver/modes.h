#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "driver/procedures.h"
#include "run/settings.h"

namespace quillon {

/// The dated copies that a mode makes before it starts.
struct BackupPlan {
    bool database = false;       ///< the file `Nirvis_CDJ_DB`
    bool playListPath = false;   ///< the folder `PlayListPath`
    bool playListPath2 = false;  ///< the folder `PlayListPath2`
};

/// One of the things a run can be for.
struct Mode {
    std::string_view what;      ///< for messages, e.g. "Add files to library"
    bool Settings::* setting;   ///< what switches it on
    bool needsLibrary = false;  ///< without `LibraryRoot` it is passed over
    std::size_t indicator = 0;  ///< of `aPhase`; not used by the reconcile mode
    BackupPlan backups = {};
    ProcedureName work = nullptr;  ///< null: the reconcile mode, which is made of phases

    bool IsOn(const Settings& settings) const { return settings.*setting; }
    bool Applies(const Settings& settings) const {
        return IsOn(settings) && !(needsLibrary && settings.LibraryRoot.empty());
    }
};

/// All modes, in the order in which they are considered.
std::span<const Mode> Modes();

/// The first mode that applies, or null when the settings ask for nothing.
const Mode* SelectMode(const Settings& settings);

/// Whether a run with these settings walks through the library folders and sweeps.
bool WalksLibrary(const Settings& settings);

}  // namespace quillon
