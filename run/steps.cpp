#include "run/steps.h"

#include "platform/failure.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

/// Whether the failure tells by itself that it concerned this, or something in it.
bool Concerns(const std::exception& failure, const std::string& subject) {
    const auto* const known = dynamic_cast<const Failure*>(&failure);
    return known != nullptr && known->Concerned().find(subject) != std::string::npos;
}

}  // namespace

void Steps::Report(const std::string& location, int number, const std::exception& failure) {
    std::string description = DescriptionOf(failure);
    if (!subject_.empty() && !Concerns(failure, subject_)) description += " (" + subject_ + ')';
    if (!advice_.empty()) description += "; " + advice_;
    const PendingError pending{number, description};
    LogError(run_, LogSource, location, &pending);
}

}  // namespace quillon
