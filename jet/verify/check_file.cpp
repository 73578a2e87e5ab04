#include "jet/check.h"
#include "jet/storage/file_system.h"
#include "jet/storage/header.h"
#include "jet/storage/pager.h"
#include "jet/verify/check_pages.h"

namespace jet {

CheckReport CheckFile(const std::filesystem::path& path) {
    const auto files = storage::RealFileSystem();
    {
        const auto file = files->Open(path, storage::FileAccess::Read);
        storage::Page start;
        const std::size_t size = file->ReadAt(0, start);
        storage::CheckHeader(std::span(start).first(size), path);
    }
    storage::Pager pager(files, path, false);
    return verify::CheckPages(pager);
}

}  // namespace jet
