#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/platform/files_fixture.h"
#include "undo/file_undo.h"

namespace quillon {

/// The host folder is D:\host.
class FileUndoTest : public FilesTest {
  protected:
    Outcome TakeBack(const FileChange& change) { return undo_.TakeBack(change); }

    FileContent Look(std::string_view path) {
        const FileEntry entry = files_.GetFile(path);
        return {.size = entry.size, .modified = entry.modified};
    }
    static FileContent Content(const std::string& bytes) {
        return {.size = bytes.size(), .hash = ContentHash(bytes), .bytes = bytes};
    }
    void SetModified(const std::string& name, std::int64_t seconds) {
        outside::SetModified(folder_ / name, seconds, 987654300);
    }
    FileTime Modified(const std::string& name) {
        const auto facts = FactsOf((folder_ / name).string());
        EXPECT_TRUE(facts);
        return facts ? facts->modified : FileTime{};
    }
    FileChange Move(const std::string& from, const std::string& to) {
        FileChange change{
            .kind = FileChange::Kind::Moved, .path = from, .target = to, .before = Look(from)};
        files_.MoveFile(from, to);
        return change;
    }

    FileUndo undo_{files_, R"(D:\host)"};
};

}  // namespace quillon
