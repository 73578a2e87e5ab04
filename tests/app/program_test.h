#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "app/program.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {

/// Calls of the program and a folder for what they work on.
class ProgramTest : public testing::Test {
  protected:
    std::filesystem::path Path(const std::string& name) const { return folder_ / name; }
    std::filesystem::path MakeFolder(const std::string& name) const {
        return folder_.MakeFolder(name);
    }
    void Write(const std::string& name, const std::string& text) const {
        folder_.MakeFile(name, text);
    }
    std::string Read(const std::string& name) const { return folder_.Content(name); }
    const std::filesystem::path& Folder() const { return folder_.Path(); }

  private:
    outside::TemporaryFolder folder_;
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
