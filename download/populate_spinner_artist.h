#pragma once

namespace quillon {

class Run;

/// Adds each album artist to the table of download artists that is not in it yet. An artist that
/// cannot be looked up (a name with a double quote) or stored is logged and passed over.
void PopulateSpinnerArtist(Run& run);

}  // namespace quillon
