#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/failure.h"
#include "platform/in_place.h"
#include "tests/platform/files_fixture.h"

namespace quillon {
namespace {

constexpr const char* Song = R"(D:\x.mp3)";

class ReplaceBytesTest : public FilesTest {
  protected:
    ReplaceBytesTest() {
        folder_.MakeFile("x.mp3", "head and audio");
        outside::SetModified(folder_ / "x.mp3", 1700000000, 123456700);
        before_ = Facts();
    }

    static std::vector<std::uint8_t> Bytes(std::string_view text) {
        return {text.begin(), text.end()};
    }
    /// In the place of "ead".
    void Replace(std::string_view bytes) {
        files_.ReplaceBytes(Song, {.size = 14, .position = 1, .bytes = Bytes("ead")}, Bytes(bytes));
    }
    std::string Content() { return folder_.Content("x.mp3"); }
    FileFacts Facts() { return *FactsOf((folder_ / "x.mp3").string()); }
    void ExpectOldTime() {
        EXPECT_EQ(Facts().modified.seconds, 1700000000);
        EXPECT_EQ(Facts().modified.nanoseconds, 123456700);
    }

    FileFacts before_;
};

TEST_F(ReplaceBytesTest, WritesAsManyBytesInPlace) {
    Replace("EAD");
    EXPECT_EQ(Content(), "hEAD and audio");
    EXPECT_EQ(Facts().identity, before_.identity);
    ExpectOldTime();
}

TEST_F(ReplaceBytesTest, WritesAnotherFileWhereThePieceIsLarge) {
    for (const std::size_t size : {MostInPlace, MostInPlace + 1}) {
        const std::string old(size, 'o'), fresh(size, 'f');
        folder_.MakeFile("x.mp3", old + " audio");
        const FileIdentity identity = Facts().identity;
        files_.ReplaceBytes(Song, {.size = size + 6, .position = 0, .bytes = Bytes(old)},
                            Bytes(fresh));
        EXPECT_EQ(Content(), fresh + " audio");
        EXPECT_EQ(Facts().identity == identity, size == MostInPlace);
    }
}

TEST_F(ReplaceBytesTest, WritesAnotherFileWhereThereAreMoreOrFewer) {
    Replace("EAD OF SOME LENGTH");
    EXPECT_EQ(Content(), "hEAD OF SOME LENGTH and audio");
    EXPECT_NE(Facts().identity, before_.identity);
    EXPECT_EQ(Facts().rights, before_.rights);
    ExpectOldTime();
    files_.ReplaceBytes(Song, {.size = 29, .position = 0, .bytes = Bytes(Content().substr(0, 20))},
                        {});
    EXPECT_EQ(Content(), "and audio");
    ExpectOldTime();
    EXPECT_EQ(files_.FilesIn("D:\\").size(), 1U);
}

TEST_F(ReplaceBytesTest, ChangesNothingThatIsNotAsItWasSeen) {
    for (const FilePiece& seen : {FilePiece{.size = 13, .position = 1, .bytes = Bytes("ead")},
                                  FilePiece{.size = 14, .position = 2, .bytes = Bytes("ead")}}) {
        for (const std::string_view bytes : {"EAD", "longer"})
            EXPECT_EQ(FailureOf([&] { files_.ReplaceBytes(Song, seen, Bytes(bytes)); }),
                      "Path/File access error: D:\\x.mp3 (it has changed meanwhile)");
    }
    EXPECT_THROW(files_.ReplaceBytes(Song, {.size = 14, .position = 13, .bytes = Bytes("io")}, {}),
                 Failure);
    EXPECT_EQ(Content(), "head and audio");
}

TEST_F(ReplaceBytesTest, ATimeComesBackAsExactAsTheDiskKeepsIt) {
    const std::int64_t step = SpeaksWindowsPaths() ? 100 : 1;
    const std::int64_t time = files_.ExactTimeOf(Song);
    EXPECT_EQ(time, 1700000000123456700);
    for (const std::int64_t other : {time + step, std::int64_t{-1'500'000'000}}) {
        files_.SetExactTime(Song, other);
        EXPECT_EQ(files_.ExactTimeOf(Song), other);
    }
    EXPECT_EQ(files_.ExactTimeOf(R"(D:\none.mp3)"), 0);
}

TEST_F(ReplaceBytesTest, MakesNoFile) {
    EXPECT_THROW(files_.ReplaceBytes(R"(D:\no.mp3)", {}, {}), Failure);
    EXPECT_FALSE(files_.FileExists(R"(D:\no.mp3)"));
}

}  // namespace
}  // namespace quillon
