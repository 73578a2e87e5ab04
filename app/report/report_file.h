#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "app/report/report_content.h"

namespace quillon {

class LeftOut;
class Run;

/// The folder that keeps reports: HOST/Reports.
std::filesystem::path ReportsFolder(const std::filesystem::path& host);

/// The music that a run has passed by, in words.
std::vector<ReportFacts::LeftOutMusic> LeftOutForReport(const LeftOut& leftOut);

/// Writes HOST/Reports/<stamp>.html and last.html of a run that has changed something or logged an
/// error; nothing for any other. A report that cannot be written is a line in the log and nothing
/// worse: the run was as it was.
void WriteReport(Run& run, const std::filesystem::path& host, std::span<const ChangeRecord> records,
                 const ReportFacts& facts);

}  // namespace quillon
