#include "app/report/report_file.h"

#include <exception>
#include <string_view>

#include "app/report/report_page.h"
#include "platform/failure.h"
#include "platform/portable/safe_file.h"
#include "run/left_out.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

void WriteWhole(const std::filesystem::path& path, std::string_view text) {
    SafeFile file(path.string(), path.string(), SafeFile::Existing::ReplaceOwn);
    file.Write(text);
    file.Commit();
}

}  // namespace

std::filesystem::path ReportsFolder(const std::filesystem::path& host) {
    return host / "Reports";
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

void WriteReport(Run& run, const std::filesystem::path& host, std::span<const ChangeRecord> records,
                 const ReportFacts& facts) {
    try {
        const ReportContent content = GatherReport(records, facts);
        if (content.stamp.empty() || (!content.HasChanges() && content.errorCount == 0)) return;
        const std::string page = ReportPage(content, facts);
        std::filesystem::create_directories(ReportsFolder(host));
        WriteWhole(ReportsFolder(host) / (content.stamp + ".html"), page);
        WriteWhole(ReportsFolder(host) / "last.html", page);
    } catch (const std::exception& error) {
        WriteLog(run, LogSource,
                 "The report of this run could not be written to " + ReportsFolder(host).string() +
                     ": " + DescriptionOf(error) +
                     ". The run itself is not concerned; 'quillon changes' tells what it did");
    }
}

}  // namespace quillon
