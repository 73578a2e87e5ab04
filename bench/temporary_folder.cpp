#include "bench/temporary_folder.h"

#include <random>
#include <string>
#include <system_error>

namespace quillon::bench {

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path() /
            ("quillon-bench-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace quillon::bench
