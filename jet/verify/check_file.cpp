#include "jet/check.h"
#include "jet/storage/file_system.h"
#include "jet/storage/header.h"
#include "jet/storage/pager.h"
#include "jet/verify/check_pages.h"

namespace jet {

CheckReport CheckFile(const std::filesystem::path& path) {
    const auto files = storage::RealFileSystem();
    storage::CheckHeaderOf(*files, files->Resolve(path));
    storage::Pager pager(files, path, false);
    CheckReport report = verify::CheckPages(pager);
    report.journal = pager.Journal();
    return report;
}

}  // namespace jet
