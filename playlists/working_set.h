#pragma once

#include <string_view>

namespace quillon {

class Run;

/// Replaces the run's playlist working set by an empty one.
void BuildORsRecordset(Run& run);

/// Writes every entry of the working set into the host's log: "ORs ", then the caption and the
/// fields in their order, with commas between. For diagnosis; no phase calls it.
void showORs(Run& run, std::string_view caption);

}  // namespace quillon
