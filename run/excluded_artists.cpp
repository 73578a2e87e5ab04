#include "run/excluded_artists.h"

#include <vector>

#include "platform/basic_text.h"
#include "run/run.h"

namespace quillon {

void ReadExcludeList(Run& run) {
    const std::string& list = run.settings.ExcludeList;
    run.ExcludeEmpty = list.empty();
    run.ExcludeList = list.empty() ? std::vector<std::string>{""} : Split(list, ",");
}

ExcludedArtists::ExcludedArtists(const Run& run)
    : ExcludedArtists(run.ExcludeEmpty ? std::vector<std::string>() : run.ExcludeList) {}

ExcludedArtists::ExcludedArtists(const std::vector<std::string>& names) {
    for (const std::string& name : names)
        names_.insert(LowerCase(name));
}

bool ExcludedArtists::Contains(std::string_view artist) const {
    return !names_.empty() && names_.contains(LowerCase(artist));
}

}  // namespace quillon
