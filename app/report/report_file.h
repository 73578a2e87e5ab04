#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "app/report/report_content.h"

namespace quillon {

class LeftOut;
class Host;

/// The folder that keeps reports: HOST/Reports.
std::filesystem::path ReportsFolder(const std::filesystem::path& host);

/// Removes what a killed run has left of reports. Never fails.
void RemoveUnfinishedReports(const std::filesystem::path& host);

/// The music that a run has passed by, in words.
std::vector<ReportFacts::LeftOutMusic> LeftOutForReport(const LeftOut& leftOut);

/// Writes HOST/Reports/<stamp>.html and last.html of a run that has changed something or logged an
/// error; nothing for any other. `folder` is the host folder, `contentOf` is asked once. A report
/// that cannot be written is a line in the log and nothing worse: the run was as it was.
void WriteReport(Host& host, const std::filesystem::path& folder,
                 const std::function<ReportContent()>& contentOf, const ReportFacts& facts);

}  // namespace quillon
