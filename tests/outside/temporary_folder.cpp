#include "tests/outside/temporary_folder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace outside {

namespace fs = std::filesystem;

void CopyOver(const fs::path& original, const fs::path& copy) {
    fs::remove(copy);
    fs::copy_file(original, copy);
}

std::string ContentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    if (!stream) throw std::runtime_error("no file " + file.string());
    std::string content(static_cast<std::size_t>(stream.tellg()), '\0');
    stream.seekg(0);
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

TemporaryFolder::TemporaryFolder() {
    std::random_device chance;
    fs::path path;
    do
        path = fs::temp_directory_path() / ("quillon-" + std::to_string(chance()));
    while (!fs::create_directory(path));
    fs::permissions(path, fs::perms::owner_all);
    path_ = fs::canonical(path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    for (auto entry = fs::recursive_directory_iterator(path_, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored))
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::MakeFolder(std::string_view name) const {
    fs::create_directories(path_ / name);
    return path_ / name;
}

fs::path TemporaryFolder::MakeFile(std::string_view name, std::string_view content) const {
    fs::path file = path_ / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
}

fs::path TemporaryFolder::CopyOf(const fs::path& original) const {
    fs::path copy = path_ / original.filename();
    CopyOver(original, copy);
    fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
    return copy;
}

std::string TemporaryFolder::Content(std::string_view name) const {
    return ContentOf(path_ / name);
}

bool TemporaryFolder::Exists(std::string_view name) const {
    return fs::exists(fs::symlink_status(path_ / name));
}

std::size_t TemporaryFolder::Count(std::string_view name) const {
    const fs::directory_iterator entries(path_ / name);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace outside
