#include "run/steps.h"

#include "platform/failure.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {

void Steps::Report(const std::string& location, int number, const std::exception& failure) {
    std::string description = DescriptionOf(failure);
    if (!subject_.empty() && description.find(subject_) == std::string::npos)
        description += " (" + subject_ + ')';
    if (!advice_.empty()) description += "; " + advice_;
    const PendingError pending{number, description};
    LogError(run_, LogSource, location, &pending);
}

}  // namespace quillon
