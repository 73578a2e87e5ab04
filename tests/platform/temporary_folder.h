#pragma once

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/failure.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {

/// A local folder of a test's own, to fill and to look at.
class TemporaryFolder : public outside::TemporaryFolder {
  public:
    std::filesystem::path operator/(std::string_view name) const { return Path() / name; }

    void MakeFolder(std::string_view name) const {
        std::filesystem::create_directories(Path() / name);
    }

    /// Makes a file, and the folders above it.
    void MakeFile(std::string_view name, std::string_view content = "") const {
        const std::filesystem::path path = Path() / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }

    std::string Content(std::string_view name) const {
        std::ifstream stream(Path() / name, std::ios::binary);
        if (!stream) throw std::runtime_error("no file " + std::string(name));
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    bool Exists(std::string_view name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(Path() / name));
    }

    /// How many entries a folder has, hidden ones too.
    std::size_t Count(std::string_view name = "") const {
        const std::filesystem::directory_iterator entries(Path() / name);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
};

/// The description of the failure that an action ends in, "" when it ends well.
template <typename Action>
std::string FailureOf(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

}  // namespace quillon
