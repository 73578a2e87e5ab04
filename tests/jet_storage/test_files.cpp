#include "tests/jet_storage/test_files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace jet::storage::test {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "storage-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryFolder::CopyOf(const std::filesystem::path& original) const {
    const auto copy = path_ / original.filename();
    std::filesystem::copy_file(original, copy, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::permissions(copy, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    return copy;
}

std::filesystem::path SharedFolder() {
    const char* given = std::getenv("QUILLON_SHARED");
    return given != nullptr ? given : QUILLON_SHARED_DEFAULT;
}

bool HasSharedFolder() {
    return std::filesystem::exists(SharedFolder() / "fixtures");
}

std::vector<std::filesystem::path> DescribedDatabases() {
    std::vector<std::filesystem::path> databases;
    if (!HasSharedFolder()) return databases;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(SharedFolder() / "fixtures")) {
        auto rows = entry.path();
        rows.replace_extension(".jsonl.gz");
        if (entry.path().extension() == ".mdb" && std::filesystem::exists(rows)) {
            databases.push_back(entry.path());
        }
    }
    std::sort(databases.begin(), databases.end());
    return databases;
}

std::string OutputOf(const std::string& command) {
    const auto close = [](std::FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<std::FILE, decltype(close)> pipe(popen(command.c_str(), "r"), close);
    if (!pipe) throw std::runtime_error("cannot run " + command);
    std::string output;
    std::array<char, 65536> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
        output.append(buffer.data(), count);
    }
    return output;
}

std::string FaultsOf(const std::filesystem::path& database, bool strict) {
    const auto checker = SharedFolder() / "mdb" / "mdbcheck";
    if (!std::filesystem::exists(checker)) return {};
    const std::string output =
        OutputOf(checker.string() + (strict ? " --strict " : " ") + database.string() + " 2>&1");
    return output.starts_with("OK ") ? std::string() : output;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
}

}  // namespace jet::storage::test
