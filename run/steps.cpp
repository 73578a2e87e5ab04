#include "run/steps.h"

#include "run/log.h"
#include "run/run.h"

namespace quillon {

void Steps::Report(const std::string& location, int step, const std::exception& failure) {
    const PendingError pending{step, failure.what()};
    LogError(run_, LogSource, location, &pending);
}

}  // namespace quillon
