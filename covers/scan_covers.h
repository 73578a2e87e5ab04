#pragma once

#include <optional>

#include "covers/cover_set.h"

namespace quillon {

/// Finds the images in the cover folder and, where the host's settings ask for it, in the album
/// folders below the library root. Nothing when neither is to be looked at, or after Abort.
///
/// Throws Failure when a folder that is to be looked at is not there or cannot be listed: a set
/// that lacks its covers would say that they are gone.
std::optional<CoverSet> ScanCovers(Run& run);

}  // namespace quillon
