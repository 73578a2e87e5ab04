#include "tests/outside/density.h"

namespace outside {

std::size_t StepUnderSanitizers(std::size_t step) {
    return QUILLON_TRIES_ALL ? 1 : step;
}

}  // namespace outside
