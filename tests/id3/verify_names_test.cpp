#include "tests/id3/verify_fixture.h"

/// Tags and names that say the same in different characters.
namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class VerifyNamesTest : public VerifyTest {
  protected:
    void ExpectNothingToDo() {
        const std::vector<std::string> names = Names();
        library.calls.Forget();
        Verify();
        EXPECT_THAT(Differences(), IsEmpty());
        EXPECT_EQ(Names(), names);
        EXPECT_THAT(library.calls.Of({"MoveFile", "DeleteFile"}), IsEmpty());
        EXPECT_THAT(library.host.log, IsEmpty());
    }
};

TEST_F(VerifyNamesTest, MayHaveTheArtistInOtherLetterCase) {
    AddTrack("ALDER - Dawn.mp3", "Dawn", TagOf("Dawn"));
    AddTrack("alder - Noon.MP3", "Noon", TagOf("Noon", 2));
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, LackCharactersThatTagsHave) {
    RawTag tag = TagOf("Who? Me [live]");
    tag.artist = "AC/DC";
    tag.album = "Act 1: Dawn";
    library.AddFile(R"(AC-DC\Act 1 Dawn\AC-DC - Who Me (live).mp3)", tag);
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, AgreeWithTagsInUtf8) {
    AddFile("Alder - 初恋.mp3", TagOf("初恋"));
    AddFile("Alder - Fr\u00FChling.mp3", TagOf("Fr\u00FChling", 2));
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, AgreeWithTagsInUtf8ThatAreCutAmidACharacter) {
    const std::string title = "x初恋初恋初恋初恋初恋初恋";
    AddFile("Alder - " + title + ".mp3", TagOf(title.substr(0, 30)));
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, TakeTitlesInUtf8) {
    AddTrack("01 - 初恋.mp3", "初恋", TagOf("初恋"));
    AddTrack("02 - x.mp3", "x", TagOf("D\xE4mmerung", 2));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - D\u00E4mmerung.mp3", "Alder - 初恋.mp3"));
    EXPECT_THAT(Tracks(), ElementsAre("Alder - 初恋.mp3|初恋|1|1",
                                      "Alder - D\u00E4mmerung.mp3|D\u00E4mmerung|2|2"));
    library.Execute("DELETE * FROM SpinnerID3Differences");
    library.host.log.clear();
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, AreNeverCutToTheBeginningOfTheirTitle) {
    const std::string title = "A title that no tag of this kind can hold, part ";
    AddTrack("01 - " + title + "one.mp3", "one", TagOf(title, 1));
    AddTrack("02 - " + title + "two.mp3", "two", TagOf(title, 2));
    AddTrack("03. Dawn Chorus.mp3", "Dawn Chorus", TagOf("Dawn", 3));
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, MakeNoDuplicateOfATitleThatIsCut) {
    const std::string title = "A title that no tag of this kind can hold, part ";
    AddTrack("Alder - " + title.substr(0, 30) + ".mp3", "whole", TagOf(title, 1));
    AddTrack("02 - " + title + "two.mp3", "two", TagOf(title, 2));
    ExpectNothingToDo();
}

// What cannot be seen.

TEST_F(VerifyNamesTest, StayWhereASoundFileIsOutOfSight) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn"));
    AddTrack("[x].mp3", "[x]", TagOf("x"));
    library.files.HideFromView(PathOf("Alder - Dawn.mp3"));
    ExpectNothingToDo();
}

TEST_F(VerifyNamesTest, DoNotMindOtherFilesOutOfSight) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn"));
    library.files.HideFromView(PathOf("cover.jpg"));
    Verify();
    EXPECT_THAT(Names(), ElementsAre("Alder - Dawn.mp3"));
}

TEST_F(VerifyNamesTest, StayWhereNobodyCanTellWhetherTheNewOneIsFree) {
    AddTrack("01 - Dawn.mp3", "Dawn", TagOf("Dawn"));
    AddTrack("[x].mp3", "[x]", TagOf("(x)"));
    library.files.afterListing = [this] {
        library.files.HideFromView(PathOf("Alder - Dawn.mp3"));
        library.files.HideFromView(PathOf("(x).mp3"));
    };
    Verify();
    EXPECT_THAT(Names(), ElementsAre("01 - Dawn.mp3", "[x].mp3"));
    EXPECT_THAT(library.calls.Of({"MoveFile", "DeleteFile"}), IsEmpty());
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: VerifyID3TagsFolder Line 4 Path/File access error: " +
                                PathOf("(x).mp3") + " (" + PathOf("[x].mp3") + ")",
                            "Quillon: VerifyID3TagsFolder Line 7 Path/File access error: " +
                                PathOf("Alder - Dawn.mp3") + " (" + PathOf("01 - Dawn.mp3") + ")"));
}

}  // namespace
}  // namespace quillon
