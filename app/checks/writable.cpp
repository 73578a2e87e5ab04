#include "app/checks/writable.h"

#include "platform/portable/local_file.h"

namespace quillon {

bool IsWritable(const std::filesystem::path& path) {
    return MayWrite(path.generic_string());
}

}  // namespace quillon
