#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/portable/local_file.h"
#include "platform/portable/portable_files.h"
#include "tests/outside/file_marks.h"
#include "tests/outside/posix_test.h"
#include "tests/outside/temporary_folder.h"
#include "tests/platform/failure_of.h"

namespace quillon {

/// Files on a temporary folder, which is drive D:.
class FilesTest : public testing::Test {
  protected:
    FilesTest()
        : resolver_(Drives(folder_)),
          files_(resolver_,
                 [this](LogKind, const std::string& message) { notes_.push_back(message); }) {}

    static DriveTable Drives(const outside::TemporaryFolder& folder) {
        DriveTable drives(folder.Path());
        drives.Map("D", folder.Path());
        return drives;
    }

    std::vector<std::string> FileNames(std::string_view folder) {
        std::vector<std::string> names;
        for (const FileEntry& entry : files_.FilesIn(folder))
            names.push_back(entry.name);
        return names;
    }
    std::vector<std::string> FolderNames(std::string_view folder) {
        std::vector<std::string> names;
        for (const FolderEntry& entry : files_.SubFolders(folder))
            names.push_back(entry.name);
        return names;
    }

    using Names = std::vector<std::string>;
    outside::TemporaryFolder folder_;
    PathResolver resolver_;
    std::vector<std::string> notes_;
    PortableFiles files_;
};

}  // namespace quillon
