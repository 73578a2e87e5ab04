#include "app/journal/old_runs.h"

#include <algorithm>
#include <exception>
#include <string>
#include <system_error>
#include <vector>

#include "platform/stamp.h"
#include "undo/history.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// The stamps of the runs that have left a file of this ending, the oldest first.
std::vector<std::string> StampsIn(const fs::path& folder, const char* ending) {
    std::vector<std::string> stamps;
    std::error_code error, ignored;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string stamp = entry->path().stem().string();
        if (entry->path().extension() != ending || !IsStamp(stamp)) continue;
        if (fs::is_regular_file(entry->symlink_status(ignored))) stamps.push_back(stamp);
    }
    std::ranges::sort(stamps, [](const std::string& left, const std::string& right) {
        return CompareStamps(left, right) < 0;
    });
    return stamps;
}

}  // namespace

void RemoveOldRuns(const fs::path& folder, const char* ending, DateTime now) noexcept try {
    std::vector<std::string> stamps = StampsIn(folder, ending);
    if (stamps.size() <= RunsKept) return;
    stamps.resize(stamps.size() - RunsKept);
    const std::string oldest = StampText({now.days - DaysKept});
    for (const std::string& stamp : stamps) {
        if (CompareStamps(stamp, oldest) >= 0) return;
        std::error_code ignored;
        // The journal goes last: without it nobody would know whose the rest is.
        if (fs::is_directory(fs::symlink_status(folder / stamp, ignored)))
            fs::remove_all(folder / stamp, ignored);
        fs::remove(folder / (stamp + ending), ignored);
    }
} catch (const std::exception&) {
    return;  // the next run tries again
}

}  // namespace quillon
