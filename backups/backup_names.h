#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/date_time.h"

namespace quillon {

/// What stands between an original's name and the mark of a copy.
constexpr std::string_view CopyWords = "_Copy Dated_";

/// The name of a dated copy: the original's, those words, the mark and "_". The mark is the stamp,
/// and for a further copy of that second "_" and a number.
std::string CopyName(std::string_view original, std::string_view mark);

/// The times that a stamp can mean. Month and day have no leading zeros, so that "1112026" is a day
/// of January or of November; mostly both are the same.
struct StampTimes {
    DateTime first, last;
};

/// A copy's mark, taken apart.
struct BackupMark {
    StampTimes times;
    unsigned number = 1;  ///< of the copies of that second
};

/// None for what BackupStamp() and a number behind it cannot have made.
std::optional<BackupMark> ReadBackupMark(std::string_view mark);

/// The mark in the name of a dated copy of this original; "" where it is none. The original's name
/// counts without letter case, all else exactly.
std::string MarkOfCopy(std::string_view name, std::string_view original);

}  // namespace quillon
