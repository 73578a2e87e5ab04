#pragma once

#include <cstddef>

namespace outside {

/// How far a test that tries one moment or one damage after another goes on each time: one step, so
/// that none is left out. Under the sanitizers and under Wine `step`: they look at memory and at
/// calls of the system, for which some of them do, and every other build tries them all.
std::size_t StepUnderSanitizers(std::size_t step);

}  // namespace outside
