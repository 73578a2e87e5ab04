#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/basic_text.h"
#include "tests/tags/write_tag_fixture.h"

namespace quillon {
namespace {

using support::RawTag;
using support::SoundFile;
using support::TagBytes;
using ::testing::IsEmpty;

/// A tag whose texts are in UTF-8.
class WriteUtf8TagTest : public WriteTagTest {
  protected:
    WriteUtf8TagTest() { library.files.AddFile(Path, SoundFile(Utf8Tag())); }

    static RawTag Utf8Tag() {
        RawTag tag = OldTag();
        tag.song = "初恋";
        tag.artist = "Fr\u00FChling";
        tag.album = "x初恋初恋初恋初恋初恋";  // cut amid its last character
        tag.comment = "schön";
        return tag;
    }
};

TEST_F(WriteUtf8TagTest, KeepsTheBytesOfTextsThatStay) {
    EXPECT_TRUE(Write("TAG|初恋|Fr\u00FChling|x初恋初恋初恋初恋初|1999|schön||7|"));
    RawTag expected = Utf8Tag();
    expected.track = 7;
    EXPECT_EQ(WrittenTag(), TagBytes(expected));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(WriteUtf8TagTest, KeepsTheBytesOfATextThatItsFieldHasCut) {
    EXPECT_TRUE(Write("TAG|初恋|Fr\u00FChling|x初恋初恋初恋初恋初恋初恋|1999|schön||3|"));
    EXPECT_EQ(WrittenTag(), TagBytes(Utf8Tag()));
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(WriteUtf8TagTest, WritesOtherTextsInTheAnsiCodePage) {
    EXPECT_TRUE(Write("TAG|Erste Liebe|Fr\u00FChlinge|schöner|1999|schön Length='9'||3|"));
    EXPECT_EQ(WrittenTag(), TagBytes({.marker = "TAG",
                                      .song = "Erste Liebe",
                                      .artist = "Fr\xFChlinge",
                                      .album = "sch\xF6ner",
                                      .year = "1999",
                                      .comment = "sch\xF6n Length='9'",
                                      .track = 3,
                                      .genre = 40}));
}

TEST_F(WriteUtf8TagTest, RefusesOtherTextsThatTheCodePageLacks) {
    EXPECT_FALSE(Write("TAG|初愛|Fr\u00FChling|x|1999|schön||3|"));
    EXPECT_FALSE(Write("TAG|初恋 (live)|Fr\u00FChling|x|1999|schön||3|"));
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_EQ(Log().size(), 2U);
}

TEST_F(WriteUtf8TagTest, CutsALongCommentBetweenCharacters) {
    RawTag tag = Utf8Tag();
    tag.track = 0;
    tag.comment = "初恋初恋初恋初恋初恋";
    library.files.AddFile(Path, SoundFile(tag));
    EXPECT_TRUE(Write("TAG|初恋|Fr\u00FChling|x初恋初恋初恋初恋初|1999|初恋初恋初恋初恋初恋||5|"));
    EXPECT_EQ(Split(Record(), "|")[5], "初恋初恋初恋初恋初");
    EXPECT_EQ(Split(Record(), "|")[7], "5");
}

}  // namespace
}  // namespace quillon
