#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "app/journal/journal_file.h"
#include "app/journal/journal_lines.h"
#include "platform/failure.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {

class StoppedClock : public Clock {
  public:
    DateTime Now() const override { return {45000.5}; }
    std::uint32_t Nanoseconds() const override { return 0; }
};

class JournalFileTest : public testing::Test {
  protected:
    static ChangeRecord Row(std::int64_t number) {
        return RowChange{RowChange::Kind::Changed,
                         "Tracks",
                         {{"ID", number}},
                         {{"Title", std::string(100, 'a'), std::string(100, 'b')}}};
    }
    static ChangeRecord Rename() {
        return FileChange{
            .number = 1, .kind = FileChange::Kind::Moved, .path = R"(D:\a)", .target = R"(D:\b)"};
    }

    /// What somebody else reads; each line has to be a whole record.
    std::vector<ChangeRecord> Read(const std::string& stamp) const {
        std::vector<ChangeRecord> records;
        std::ifstream file(changes_ / (stamp + ".jsonl"));
        for (std::string line; std::getline(file, line);)
            records.push_back(FromLine(line));
        return records;
    }
    std::uintmax_t Size(const JournalFile& journal) const {
        return std::filesystem::file_size(changes_ / (journal.Stamp() + ".jsonl"));
    }

    outside::TemporaryFolder folder_;
    std::filesystem::path changes_ = folder_.Path() / "Changes";
    StoppedClock clock_;
};

}  // namespace quillon
