#pragma once

#include <cstddef>
#include <filesystem>

#include "platform/date_time.h"

namespace quillon {

/// So many of the newest stay whatever their age, and all that are younger than so many days.
constexpr std::size_t RunsKept = 100;
constexpr int DaysKept = 60;

/// Removes what runs of long ago have left in a folder: files named by their stamps with this
/// ending, with the folders beside them that have a run's stamp for a name. Nothing else is
/// touched, no link either; what cannot be removed stays.
void RemoveOldRuns(const std::filesystem::path& folder, const char* ending, DateTime now) noexcept;

}  // namespace quillon
