#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace quillon {

/// A time as a name for files and folders: "2026-11-21_07-13-05".
inline std::string StampText(DateTime time) {
    std::string stamp = SortableDateTimeText(time);
    std::replace(stamp.begin(), stamp.end(), ' ', '_');
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    return stamp;
}

/// Whether a run has, or could have, this stamp; "-2" and so on may be behind the time.
inline bool IsStamp(std::string_view name) {
    constexpr std::string_view Form = "0000-00-00_00-00-00";
    const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
    if (name.size() < Form.size()) return false;
    for (std::size_t i = 0; i < Form.size(); ++i)
        if (Form[i] == '0' ? !isDigit(name[i]) : name[i] != Form[i]) return false;
    const std::string_view number = name.substr(Form.size());
    return number.empty() || (number.size() > 1 && number.front() == '-' &&
                              std::all_of(number.begin() + 1, number.end(), isDigit));
}

}  // namespace quillon
