#include "run/file_bytes.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/files.h"

namespace quillon {

bool HoldsJust(Files& files, std::string_view path, std::string_view bytes) {
    if (!files.FileExists(path)) return false;
    const std::unique_ptr<BinaryReader> present = files.OpenBinary(path);
    if (present->Size() != bytes.size()) return false;
    const std::vector<std::uint8_t> content = present->Read(bytes.size());
    return std::ranges::equal(content, bytes, [](std::uint8_t there, char wanted) {
        return there == static_cast<std::uint8_t>(wanted);
    });
}

}  // namespace quillon
