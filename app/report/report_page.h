#pragma once

#include <span>
#include <string>

#include "app/report/report_content.h"

namespace quillon {

/// A run as one HTML page that needs nothing else: errors first and what to do about them, what
/// changed by artist, the time of each phase, the music that was passed by. Names come as they are
/// and are made harmless here.
std::string ReportPage(const ReportContent& content, const ReportFacts& facts);

}  // namespace quillon
