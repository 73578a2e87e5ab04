#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "driver/procedures.h"
#include "run/settings.h"

namespace quillon {

/// What decides which phases of a reconciliation run.
struct ReconcileScope {
    /// Whether the folder phases have a library to walk; never so in a playlists-only run.
    bool libraryPresent = false;
    bool playlistsOnly = false;
    bool id3Reconcile = false;
    bool reconcileOption = false;

    bool ComparesTags() const { return id3Reconcile && libraryPresent; }
};

/// One phase of the reconcile mode.
struct ReconcilePhase {
    std::string_view what;  ///< for messages, e.g. "Capture playlists"
    bool (*applies)(const ReconcileScope& scope);

    /// The indicator of `aPhase` that is started; without one, `item` is shown instead.
    std::optional<std::size_t> indicator;
    std::string_view item = {};

    /// Run before the work; may be null.
    ProcedureName preparation = nullptr;
    /// Null: the phase has no work at all, by design.
    ProcedureName work = nullptr;
};

/// All phases, in their order: each builds on what those before it left in the database.
std::span<const ReconcilePhase> ReconcilePhases();

}  // namespace quillon
