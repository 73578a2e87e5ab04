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

ExcludedArtists::ExcludedArtists(const Run& run) {
    if (run.ExcludeEmpty) return;
    for (const std::string& name : run.ExcludeList)
        names_.insert(LowerCase(name));
}

bool ExcludedArtists::Contains(std::string_view artist) const {
    return !names_.empty() && names_.contains(LowerCase(artist));
}

}  // namespace quillon
