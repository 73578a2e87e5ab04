#include "platform/portable/local_time.h"

namespace quillon {
namespace {

constexpr std::int64_t QuarterHour = std::int64_t{15} * 60;
constexpr std::int64_t SecondsADay = std::int64_t{24} * 60 * 60;
constexpr std::int64_t UnixEpochDay = 25569;  // 1 January 1970

std::int64_t FloorDivide(std::int64_t value, std::int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

}  // namespace

DateTime LocalTime::Of(std::time_t moment) {
    const auto [offset, isNew] = offsets_.try_emplace(FloorDivide(moment, QuarterHour));
    if (isNew) {
        std::tm local{};
        if (localtime_r(&moment, &local) != nullptr) offset->second = local.tm_gmtoff;
    }
    const std::int64_t seconds = moment + offset->second;
    const std::int64_t day = FloorDivide(seconds, SecondsADay);
    const double fraction =
        static_cast<double>(seconds - day * SecondsADay) / static_cast<double>(SecondsADay);
    const auto days = static_cast<double>(day + UnixEpochDay);
    return {days < 0 ? days - fraction : days + fraction};
}

}  // namespace quillon
