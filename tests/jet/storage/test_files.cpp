#include "tests/jet/storage/test_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "tests/outside/command.h"
#include "tests/outside/shared_folder.h"
#include "tests/outside/structural_check.h"

namespace jet::storage::test {

std::vector<std::filesystem::path> DescribedDatabases() {
    std::vector<std::filesystem::path> databases = outside::SampleDatabases();
    std::erase_if(databases, [](std::filesystem::path rows) {
        return !std::filesystem::exists(rows.replace_extension(".jsonl.gz"));
    });
    return databases;
}

std::string OutputOf(const std::string& command) {
    return outside::RunCommand(command).output;
}

std::string FaultsOf(const std::filesystem::path& database, bool strict) {
    return outside::StructuralFaults(
        database, strict ? outside::Strictness::Strict : outside::Strictness::Lenient);
}

void WriteFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
}

}  // namespace jet::storage::test
