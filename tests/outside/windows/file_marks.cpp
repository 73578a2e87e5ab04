#include "tests/outside/file_marks.h"

#include <stdexcept>
#include <system_error>
#include <windows.h>

namespace outside {

bool IsSuperUser() {
    return false;
}

void SetModified(const std::filesystem::path& path, std::int64_t seconds,
                 std::int32_t nanoseconds) {
    constexpr std::int64_t StepsOfASecond = 10'000'000, SecondsBefore1970 = 11'644'473'600;
    const auto steps = static_cast<std::uint64_t>((seconds + SecondsBefore1970) * StepsOfASecond +
                                                  nanoseconds / 100);
    const FILETIME time{static_cast<DWORD>(steps & 0xFFFFFFFFU), static_cast<DWORD>(steps >> 32U)};
    HANDLE const file = CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const bool isSet = file != INVALID_HANDLE_VALUE && SetFileTime(file, nullptr, nullptr, &time);
    const DWORD error = GetLastError();
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    if (!isSet)
        throw std::system_error(static_cast<int>(error), std::system_category(), path.string());
}

void SetRights(const std::filesystem::path& /*path*/, unsigned /*rights*/) {
    throw std::logic_error("files have no such rights here");
}

void MakePipe(const std::filesystem::path& /*path*/) {
    throw std::logic_error("there are no such pipes here");
}

}  // namespace outside
