#include "app/report/report_content.h"

#include <algorithm>

namespace quillon {

bool ReportContent::HasChanges() const {
    return std::ranges::any_of(total, [](const DeedList& list) { return list.count > 0; });
}

}  // namespace quillon
