#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/undo/file_undo_fixture.h"

namespace quillon {
namespace {

using Kind = FileChange::Kind;
using State = Outcome::State;

using PieceUndoTest = FileUndoTest;

TEST_F(PieceUndoTest, PutsATagBackAndKeepsTheTime) {
    folder_.MakeFile("a.mp3", "audioNEWTAG");
    SetModified("a.mp3", 1500000000);
    const FileChange change{.kind = Kind::EndWritten,
                            .path = R"(D:\a.mp3)",
                            .position = 5,
                            .before = Content("OLDTAG"),
                            .after = Content("NEWTAG")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("a.mp3"), "audioOLDTAG");
    EXPECT_EQ(Modified("a.mp3").seconds, 1500000000);
    EXPECT_EQ(Modified("a.mp3").nanoseconds, 987654300);
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(PieceUndoTest, CutsOffATagThatWasNotThere) {
    folder_.MakeFile("a.mp3", "audioTAG");
    SetModified("a.mp3", 1500000000);
    const FileChange change{.kind = Kind::EndWritten,
                            .path = R"(D:\a.mp3)",
                            .position = 5,
                            .before = Content(""),
                            .after = Content("TAG")};
    EXPECT_EQ(TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("a.mp3"), "audio");
    EXPECT_EQ(Modified("a.mp3").seconds, 1500000000);
    EXPECT_EQ(TakeBack(change).state, State::WasSo);
}

TEST_F(PieceUndoTest, PutsAShorterEndBackEvenWhereItWasCutOffInBetween) {
    const FileChange change{.kind = Kind::EndWritten,
                            .path = R"(D:\a.mp3)",
                            .position = 5,
                            .before = Content("OLD"),
                            .after = Content("LONGER")};
    for (const char* const content : {"audioLONGER", "audio"}) {
        folder_.MakeFile("a.mp3", content);
        EXPECT_EQ(TakeBack(change), Outcome{});
        EXPECT_EQ(folder_.Content("a.mp3"), "audioOLD");
    }
}

TEST_F(PieceUndoTest, PutsATagBackThatAnInterruptedRunHasWrittenInPart) {
    const FileChange change{.kind = Kind::EndWritten,
                            .path = R"(D:\a.mp3)",
                            .position = 5,
                            .before = Content("OLDTAG"),
                            .after = Content("NEWTIP")};
    FileUndo afterInterruption(files_, R"(D:\host)", Writes::PerhapsTorn);
    for (const char* const content : {"audioNEWTAG", "audioOLDTIP", "audioNLDTAG"}) {
        folder_.MakeFile("a.mp3", content);
        EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\a.mp3 has been changed since"));
        EXPECT_EQ(afterInterruption.TakeBack(change), Outcome{}) << content;
        EXPECT_EQ(folder_.Content("a.mp3"), "audioOLDTAG");
    }
    folder_.MakeFile("a.mp3", "audioOWNTAG");
    EXPECT_EQ(afterInterruption.TakeBack(change),
              Outcome::Refusal("D:\\a.mp3 has been changed since"));
}

TEST_F(PieceUndoTest, PutsAPieceBackThatAnInterruptedRunHasWrittenInPart) {
    FileChange change{.kind = Kind::PieceReplaced,
                      .path = R"(D:\a.mp3)",
                      .position = 3,
                      .before = FileContent{.size = 14, .bytes = "OLDTAG"},
                      .after = FileContent{.size = 14, .hash = ContentHash("NEWTIP")}};
    change.after->bytes = "NEWTIP";
    FileUndo afterInterruption(files_, R"(D:\host)", Writes::PerhapsTorn);
    for (const char* const content : {"ID3NEWTAGsound", "ID3OLDTIPsound"}) {
        folder_.MakeFile("a.mp3", content);
        EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\a.mp3 has been changed since"));
        EXPECT_EQ(PieceUndo(files_, "").ProgressOf(change), Progress::Partly);
        EXPECT_EQ(afterInterruption.TakeBack(change), Outcome{}) << content;
        EXPECT_EQ(folder_.Content("a.mp3"), "ID3OLDTAGsound");
        EXPECT_EQ(PieceUndo(files_, "").ProgressOf(change), Progress::NotBegun);
    }
    for (const char* const content : {"ID3OWNTAGsound", "ID3NEWTAGsound and more"}) {
        folder_.MakeFile("a.mp3", content);
        EXPECT_EQ(PieceUndo(files_, "").ProgressOf(change), Progress::Unknown);
        EXPECT_EQ(afterInterruption.TakeBack(change),
                  Outcome::Refusal("D:\\a.mp3 has been changed since"));
    }
}

TEST_F(PieceUndoTest, CutsOffATagOfWhichOnlyTheBeginningWasWritten) {
    folder_.MakeFile("a.mp3", "audioTA");
    const FileChange change{.kind = Kind::EndWritten,
                            .path = R"(D:\a.mp3)",
                            .position = 5,
                            .before = Content(""),
                            .after = Content("TAG")};
    EXPECT_EQ(FileUndo(files_, R"(D:\host)", Writes::PerhapsTorn).TakeBack(change), Outcome{});
    EXPECT_EQ(folder_.Content("a.mp3"), "audio");
}

TEST_F(PieceUndoTest, LeavesATagThatAnotherProgramHasWritten) {
    const FileChange change{.kind = Kind::EndWritten,
                            .path = R"(D:\a.mp3)",
                            .position = 5,
                            .before = Content("OLD"),
                            .after = Content("NEW")};
    for (const char* const content : {"audioXXX", "audioNEW and more", "aud"}) {
        folder_.MakeFile("a.mp3", content);
        EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\a.mp3 has been changed since"));
        EXPECT_EQ(folder_.Content("a.mp3"), content);
    }
    std::filesystem::remove(folder_ / "a.mp3");
    EXPECT_EQ(TakeBack(change), Outcome::Refusal("D:\\a.mp3 is not there any more"));
}

}  // namespace
}  // namespace quillon
