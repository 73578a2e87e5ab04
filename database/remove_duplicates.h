#pragma once

namespace quillon {

class Run;

/// Marks every owned album and track as not yet found in the folders, and removes what cannot be
/// reconciled: all rows of an identifier that several albums carry, and owned tracks without a
/// sound file. The mark snapshot is taken first; without it nothing is marked. Each statement's
/// failure is logged and the next one runs.
void RemoveDuplicates(Run& run);

}  // namespace quillon
