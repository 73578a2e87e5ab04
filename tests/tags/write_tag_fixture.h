#pragma once

#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tags/tag_reader.h"
#include "tags/tag_writer.h"
#include "tests/support/tag_records.h"
#include "tests/support/test_library.h"

namespace quillon {

/// A sound file with a tag, to be written over.
class WriteTagTest : public ::testing::Test {
  protected:
    WriteTagTest() {
        library.run.GenreNames[17] = "Rock";
        library.files.AddFile(Path, support::SoundFile(OldTag()));
    }

    static support::RawTag OldTag() {
        return {.marker = "TAG",
                .song = "old title",
                .artist = "old artist",
                .album = "old album",
                .year = "1999",
                .comment = "old comment",
                .track = 3,
                .genre = 40};
    }

    bool Write(const std::string& record) {
        return WriteTag(library.run, Path, support::TagOfRecord(record));
    }
    std::string Content() { return library.files.Content(Path); }
    std::string WrittenTag() { return Content().substr(Content().size() - TagSize); }
    std::string Record() { return TagRecord(ReadID3(library.run, Path).value_or(Tag())); }
    const std::vector<std::string>& Log() { return library.host.log; }
    std::vector<std::string> Writes() { return library.calls.Of({"WriteEnd"}); }

    static constexpr const char* Path = R"(D:\Music\A\B\x.mp3)";

    support::TestLibrary library;
};

}  // namespace quillon
