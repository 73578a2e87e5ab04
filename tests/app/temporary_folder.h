#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "app/program.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {

/// A folder of its own for each test, removed at its end.
class TemporaryFolder : public testing::Test {
  protected:
    std::filesystem::path Path(const std::string& name) const { return folder_ / name; }

    std::filesystem::path MakeFolder(const std::string& name) const {
        std::filesystem::create_directories(folder_ / name);
        return folder_ / name;
    }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }

    std::string Read(const std::string& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::filesystem::path& Folder() const { return folder_; }

  private:
    outside::TemporaryFolder made_;
    std::filesystem::path folder_ = std::filesystem::canonical(made_.Path());
};

/// What a call of the program gave back.
struct ProgramResult {
    int status = 0;
    std::string out, err;
};

/// Calls the program within this process.
inline ProgramResult CallProgram(const std::vector<std::string>& words) {
    std::vector<const char*> arguments{"quillon"};
    for (const std::string& word : words)
        arguments.push_back(word.c_str());
    std::ostringstream out, err;
    const int status = RunProgram(arguments, Console{out, err});
    return {status, out.str(), err.str()};
}

}  // namespace quillon
