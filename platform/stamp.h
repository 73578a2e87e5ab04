#pragma once

#include <algorithm>
#include <string>

#include "platform/date_time.h"

namespace quillon {

/// A time as a name for files and folders: "2026-11-21_07-13-05".
inline std::string StampText(DateTime time) {
    std::string stamp = SortableDateTimeText(time);
    std::replace(stamp.begin(), stamp.end(), ' ', '_');
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    return stamp;
}

}  // namespace quillon
