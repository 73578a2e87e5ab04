#include "platform/portable/local_time.h"

#include <cmath>

namespace quillon {
namespace {

constexpr std::int64_t QuarterHour = std::int64_t{15} * 60;
constexpr std::int64_t SecondsOfADay = std::int64_t{24} * 60 * 60;
constexpr std::int64_t UnixEpochDay = 25569;  // 1 January 1970

std::int64_t FloorDivide(std::int64_t value, std::int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

}  // namespace

std::int64_t LocalTime::OffsetAt(std::int64_t moment) {
    const std::int64_t day = FloorDivide(moment, SecondsOfADay);
    const auto [ofDay, isNewDay] = ofDays_.try_emplace(day);
    if (isNewDay) {
        const std::int64_t begin = SecondsAhead(day * SecondsOfADay);
        if (begin == SecondsAhead((day + 1) * SecondsOfADay)) ofDay->second = begin;
    }
    if (ofDay->second) return *ofDay->second;
    const std::int64_t quarter = FloorDivide(moment, QuarterHour);
    const auto [ofQuarter, isNew] = ofQuarterHours_.try_emplace(quarter);
    if (isNew) ofQuarter->second = SecondsAhead(moment);
    return ofQuarter->second;
}

DateTime LocalTime::Of(std::time_t moment) {
    const std::int64_t seconds = moment + OffsetAt(moment);
    const std::int64_t day = FloorDivide(seconds, SecondsOfADay);
    const double fraction =
        static_cast<double>(seconds - day * SecondsOfADay) / static_cast<double>(SecondsOfADay);
    const auto days = static_cast<double>(day + UnixEpochDay);
    return {days < 0 ? days - fraction : days + fraction};
}

std::time_t LocalTime::MomentOf(DateTime local) {
    const double days = std::trunc(local.days);
    const auto seconds =
        (static_cast<std::int64_t>(days) - UnixEpochDay) * SecondsOfADay +
        std::llround(std::abs(local.days - days) * static_cast<double>(SecondsOfADay));
    // The offset of a moment nearby, and then that of the moment itself.
    const std::int64_t nearby = seconds - OffsetAt(seconds);
    return seconds - OffsetAt(nearby);
}

}  // namespace quillon
