#include "platform/portable/local_time.h"

namespace quillon {

std::int64_t SecondsAhead(std::time_t moment) {
    std::tm local{};
    return localtime_r(&moment, &local) == nullptr ? 0 : local.tm_gmtoff;
}

}  // namespace quillon
