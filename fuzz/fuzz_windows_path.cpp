// Paths from settings, playlists and database rows: what is accepted is spelt in one way and leads
// nowhere outside its mapped folder.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/failure.h"
#include "platform/portable/drive_table.h"
#include "platform/portable/path_resolver.h"
#include "platform/windows_path.h"

namespace {

bool StaysInside(const std::string& folder, const std::string& local) {
    return local == folder ||
           std::filesystem::path(local).lexically_normal().string().starts_with(folder + '/');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string folder = "/nonexistent/quillon";
    try {
        const quillon::WindowsPath path = quillon::ParseWindowsPath(text);
        if (quillon::ParseWindowsPath(path.Text()).Text() != path.Text()) std::abort();
        quillon::DriveTable drives(folder);
        drives.Map(path.root, folder);
        const std::string local = quillon::PathResolver(drives).Local(path);
        if (!StaysInside(folder, local)) std::abort();
        if (!drives.WindowsPathOf(local)) std::abort();
    } catch (const quillon::Failure&) {
        return 0;
    }
    return 0;
}
