#include "app/local_drives.h"

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/windows_path.h"

namespace quillon {

std::filesystem::path AbsolutePath(const std::filesystem::path& path) {
    std::filesystem::path absolute = std::filesystem::absolute(path).lexically_normal();
    if (!absolute.has_filename() && absolute.has_relative_path()) return absolute.parent_path();
    return absolute;
}

std::string FreeDrive(const DriveTable& drives, char wanted) {
    constexpr std::string_view Letters = "DEFGHIJKLMNOPQRSTUVWXY";
    std::size_t position = Letters.find(wanted);
    std::string root{wanted, ':'};
    while (drives.LocalFolder(root)) {
        position = (position + 1) % Letters.size();
        root[0] = Letters[position];
    }
    return root;
}

bool MapPath(DriveTable& drives, std::string_view windowsPath,
             const std::filesystem::path& folder) try {
    const WindowsPath wanted = ParseWindowsPath(windowsPath);
    std::filesystem::path local = folder;
    std::string_view names = wanted.rest;
    while (!names.empty()) {
        const std::size_t separator = names.rfind('/');
        const std::size_t start = separator == std::string_view::npos ? 0 : separator + 1;
        if (!EqualIgnoringCase(names.substr(start), local.filename().string())) return false;
        local = local.parent_path();
        names = names.substr(0, start == 0 ? 0 : separator);
    }
    drives.Map(wanted.root, local);
    return true;
} catch (const Failure&) {
    return false;
}

}  // namespace quillon
