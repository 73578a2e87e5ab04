#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench/aims.h"
#include "bench/session.h"

namespace quillon::bench {

/// All figures as tables, to be read as they are or as Markdown.
std::string ReportText(const Figures& figures, const std::vector<Aim>& aims);

/// The page with that text between its two marks instead of what was there. All around it, which
/// people have written, stays. Throws where the marks are not in the page, once each and in order.
std::string WithMeasured(std::string_view page, std::string_view measured);

/// Throws where that cannot be done with the page in a file.
void RequireMarks(const std::filesystem::path& page);

/// Does it.
void StoreMeasured(const std::filesystem::path& page, std::string_view measured);

}  // namespace quillon::bench
