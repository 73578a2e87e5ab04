#include "changes/file_records.h"

namespace quillon {

void FileRecords::Failed(std::uint64_t number, const std::string& reason) noexcept {
    try {
        sink_.Note(FileChangeFailed{number, reason});
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace quillon
