#include "backups/backup_names.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "backups/backups.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

/// The number that all of a text is; -1 for any other text.
int NumberIn(std::string_view digits) {
    int number = -1;
    const std::span<const char> text(digits);
    const auto [stop, error] =
        std::from_chars(std::to_address(text.begin()), std::to_address(text.end()), number);
    return error == std::errc() && stop == std::to_address(text.end()) ? number : -1;
}

/// A time of day as a stamp has it: "53855_AM"; the beginning of a day for "".
struct TimeOfDay {
    int hour = 0, minute = 0, second = 0;
};

std::optional<TimeOfDay> ReadTimeOfDay(std::string_view text) {
    if (text.empty()) return TimeOfDay{};
    const bool afternoon = text.ends_with("_PM");
    if (!afternoon && !text.ends_with("_AM")) return std::nullopt;
    text.remove_suffix(3);
    if (text.size() < 5 || text.size() > 6) return std::nullopt;
    const std::string_view minutes = text.substr(text.size() - 4);
    const int hour = NumberIn(text.substr(0, text.size() - 4));
    return TimeOfDay{hour % 12 + (afternoon ? 12 : 0), NumberIn(minutes.substr(0, 2)),
                     NumberIn(minutes.substr(2))};
}

/// All times whose stamp is this text, the first one first.
std::vector<DateTime> TimesWithStamp(std::string_view stamp) {
    const std::string_view date = stamp.substr(0, stamp.find('_'));
    const std::string_view rest = stamp.substr(std::min(date.size() + 1, stamp.size()));
    std::vector<DateTime> times;
    const std::optional<TimeOfDay> time = ReadTimeOfDay(rest);
    if (!time || date.size() < 6 || date.size() > 8) return times;
    const std::string_view days = date.substr(0, date.size() - 4);
    const int year = NumberIn(date.substr(date.size() - 4));
    for (std::size_t split = 1; split < days.size(); ++split) {
        const int month = NumberIn(days.substr(0, split)), day = NumberIn(days.substr(split));
        if (year < 1000 || month < 1 || month > 12 || day < 1 || day > 31) continue;
        const DateTime made =
            MakeDateTime(year, month, day, time->hour, time->minute, time->second);
        if (BackupStamp(made) == stamp) times.push_back(made);
    }
    return times;
}

}  // namespace

std::string CopyName(std::string_view original, std::string_view mark) {
    return std::string(original).append(CopyWords).append(mark).append("_");
}

std::optional<BackupMark> ReadBackupMark(std::string_view mark) {
    std::vector<DateTime> times = TimesWithStamp(mark);
    unsigned number = 1;
    if (const std::size_t last = mark.rfind('_'); times.empty() && last != std::string_view::npos) {
        const std::string_view digits = mark.substr(last + 1);
        const int read = NumberIn(digits);
        if (read < 2 || digits != std::to_string(read)) return std::nullopt;
        number = static_cast<unsigned>(read);
        times = TimesWithStamp(mark.substr(0, last));
    }
    if (times.empty()) return std::nullopt;
    return BackupMark{{times.front(), times.back()}, number};
}

std::string MarkOfCopy(std::string_view name, std::string_view original) {
    const std::optional<std::size_t> beginning = BeginningIn(name, original);
    if (!beginning) return "";
    std::string_view mark = name.substr(*beginning);
    if (!mark.starts_with(CopyWords) || !mark.ends_with('_')) return "";
    mark.remove_prefix(CopyWords.size());
    if (mark.empty()) return "";
    mark.remove_suffix(1);
    return ReadBackupMark(mark) ? std::string(mark) : "";
}

}  // namespace quillon
