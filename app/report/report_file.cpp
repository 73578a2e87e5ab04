#include "app/report/report_file.h"

#include <exception>
#include <string_view>

#include "app/report/report_page.h"
#include "platform/failure.h"
#include "platform/host.h"
#include "platform/portable/safe_file.h"
#include "platform/portable/temporary_entry.h"
#include "run/left_out.h"
#include "run/log.h"

namespace quillon {
namespace {

void WriteWhole(const std::filesystem::path& path, std::string_view text) {
    SafeFile file(path.string(), path.string(), SafeFile::Existing::ReplaceOwn);
    file.Write(text);
    file.Commit();
}

/// The journal is closed by now, so this goes to the host alone.
void TellUnwritten(Host& host, const std::filesystem::path& folder, const std::exception& error) {
    try {
        host.WriteLog(LogSource,
                      "The report of this run could not be written to " + folder.string() + ": " +
                          DescriptionOf(error) +
                          ". The run itself is not concerned; 'quillon changes' tells what it did");
    } catch (const Failure&) {
        return;  // the run has said that its log takes no more
    }
}

}  // namespace

std::filesystem::path ReportsFolder(const std::filesystem::path& host) {
    return host / "Reports";
}

void RemoveUnfinishedReports(const std::filesystem::path& host) {
    RemoveAbandoned(ReportsFolder(host).string());
}

std::vector<ReportFacts::LeftOutMusic> LeftOutForReport(const LeftOut& leftOut) {
    std::vector<ReportFacts::LeftOutMusic> groups;
    const auto add = [&](LeftOutFor reason, std::string why) {
        const LeftOut::Group& group = leftOut.Of(reason);
        if (group.files > 0) groups.push_back({std::move(why), group.files, group.paths});
    };
    add(LeftOutFor::DeeperFolder, "below an album folder, where no run looks");
    add(LeftOutFor::NoAlbum, "in no album");
    add(LeftOutFor::OtherType, "no MP3 files");
    return groups;
}

void WriteReport(Host& host, const std::filesystem::path& folder,
                 const std::function<ReportContent()>& contentOf, const ReportFacts& facts) {
    try {
        const ReportContent content = contentOf();
        if (content.stamp.empty() || (!content.HasChanges() && content.errorCount == 0)) return;
        const std::string page = ReportPage(content, facts);
        std::filesystem::create_directories(ReportsFolder(folder));
        WriteWhole(ReportsFolder(folder) / (content.stamp + ".html"), page);
        WriteWhole(ReportsFolder(folder) / "last.html", page);
    } catch (const std::exception& error) {
        TellUnwritten(host, ReportsFolder(folder), error);
    }
}

}  // namespace quillon
