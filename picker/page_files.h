#pragma once

#include <cstddef>
#include <string_view>

#include "picker/albums.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// Writes a file of the page folder.
void WritePickerFile(Run& run, std::string_view folder, std::string_view name,
                     std::string_view text);

/// Shows which page is made, and which album on it.
void ShowPageItem(Run& run, std::size_t page, const PickerAlbum& album);

/// Takes a step on the way to the pages; whether the next one may follow: not after a failure, and
/// not after an abort.
template <NamedStep Step, typename Work>
bool GoesOn(Run& run, Steps& steps, Step step, Work&& work) {
    return !run.AbortRequested && steps.Try(step, work) && !run.AbortRequested;
}

}  // namespace quillon
