#include "tests/outside/density.h"

namespace outside {

std::size_t StepUnderSanitizers(std::size_t step) {
    return QUILLON_SANITIZED ? step : 1;
}

}  // namespace outside
