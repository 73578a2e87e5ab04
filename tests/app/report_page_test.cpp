#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "app/report/report_file.h"
#include "run/left_out.h"
#include "tests/app/report_fixture.h"

namespace quillon {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using ::testing::Not;

TEST_F(Report, NamesCommandsThatAShellTakesAsTheyAre) {
    Add(AddedTrack(1, "Alder", "Dawn"));
    End();
    EXPECT_THAT(Page(), HasSubstr("quillon undo 2026-11-21_07-13-05 --host /srv/shelf<"));
    facts.host = "/srv/Ann's shelf";
    EXPECT_THAT(Page(), HasSubstr("--host &#39;/srv/Ann&#39;\\&#39;&#39;s shelf&#39;<"));
}

TEST_F(Report, TellsErrorsFirstAndHowOften) {
    Add(AddedTrack(1, "Alder", "Dawn"));
    AddError("the disk is full");
    AddError("the disk is full");
    AddError("a list is write-protected");
    End();
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr("Completed, 3 errors"));
    EXPECT_THAT(page, HasSubstr("<li>the disk is full <b>2 times</b></li>"));
    EXPECT_LT(page.find("the disk is full"), page.find("What changed"));
    EXPECT_THAT(page, HasSubstr("<code>quillon check --host /srv/shelf</code>"));
}

TEST_F(Report, SaysWhatToDoWhateverTheEnd) {
    const auto ended = [this](const std::string& outcome, bool braked = false) {
        End(outcome, braked);
        std::string page = Page();
        records.pop_back();
        return page;
    };
    EXPECT_THAT(Page(), HasSubstr("The run was killed before its end"));
    EXPECT_THAT(ended("aborted"), HasSubstr("Run it again: it does the rest."));
    EXPECT_THAT(ended("nothing ran"), HasSubstr("Nothing was changed. What stands in the way"));
    EXPECT_THAT(ended("completed", true), HasSubstr("run --allow-removals --host /srv/shelf"));
    EXPECT_THAT(ended("completed"), Not(HasSubstr("what to do")));
}

TEST_F(Report, ShowsTheTimeOfEachPhaseAsABar) {
    Add(PhaseStarted{"Capture playlists", milliseconds(200)});
    Add(PhaseStarted{"Add <tracks>", milliseconds(1200)});
    End();
    const ReportContent content = Content();
    ASSERT_EQ(content.phases.size(), 2U);
    EXPECT_EQ(content.phases[0].took, milliseconds(1000));
    EXPECT_EQ(content.phases[1].took, milliseconds(3000));
    EXPECT_THAT(Page(),
                HasSubstr("<span>Capture playlists</span><span class=\"time\">0:00:01</span>"
                          "<span class=\"bar\"><i style=\"width:33.3%\">"));
    EXPECT_THAT(Page(), HasSubstr("Add &#60;tracks&#62;"));
}

TEST_F(Report, SaysWhatWasLeftOutAndWhy) {
    LeftOut leftOut;
    leftOut.Note(LeftOutFor::OtherType, R"(D:\Music\A\B\x.flac)", 12);
    facts.leftOut = LeftOutForReport(leftOut);
    End();
    EXPECT_THAT(Page(), HasSubstr("<b>12 files</b><span class=\"soft\">no MP3 files</span>"));
    EXPECT_THAT(Page(), HasSubstr(R"(<li>D:\Music\A\B\x.flac</li>)"));
}

TEST_F(Report, LetsNoNameBecomeHtml) {
    const std::string hostile = "</li><script>alert(\"x\")</script>\r\n'&amp;\xFF\x01";
    facts.host = hostile;
    facts.leftOut = {{hostile, 1, {hostile}}};
    records.clear();
    Add(RunStarted{hostile, hostile, hostile, hostile});
    Add(AddedTrack(1, hostile, hostile));
    Add(ChangedTrack(2, hostile, hostile, hostile));
    Add(RowChange{RowChange::Kind::Added, hostile, {}, {}});
    Add(FileChange{.number = 1, .kind = FileChange::Kind::Written, .path = hostile + ".pla"});
    Add(PhaseStarted{hostile, milliseconds(0)});
    AddError(hostile);
    End();
    const std::string page = Page();
    for (const char* const part :
         {"<script", "</script", "alert(\"", "\r", "&amp;amp", "\xFF", "\x01"})
        EXPECT_THAT(page, Not(HasSubstr(part)));
    // Every line is the page's own: none of the names has ended one.
    End("aborted");
    EXPECT_EQ(Occurrences(page, "<li>"), Occurrences(page, "</li>"));
    EXPECT_EQ(Occurrences(page, "<details>"), Occurrences(page, "</details>"));
    EXPECT_THAT(page, Not(HasSubstr("http")));
    EXPECT_THAT(page, Not(HasSubstr("src=")));
}

TEST_F(Report, OfAHundredThousandChangesShowsTheFirstHundredOfAKind) {
    for (std::int64_t i = 0; i < 100'000; ++i) {
        Add(AddedTrack(i, "Artist " + std::to_string(i % 1000), "Song " + std::to_string(i)));
        AddError("error " + std::to_string(i));
    }
    End();
    const std::string page = Page();
    EXPECT_LT(page.size(), 120'000U);
    EXPECT_THAT(page, HasSubstr("<b>100,000</b><span>tracks added</span>"));
    EXPECT_THAT(page, HasSubstr("<li>error 99</li>"));
    EXPECT_THAT(page, Not(HasSubstr("<li>error 100</li>")));
    EXPECT_THAT(page, HasSubstr("and 99,900 more, which host.log has"));
    EXPECT_EQ(Occurrences(page, "<li>Song "), 100U);
    EXPECT_THAT(page, HasSubstr("and 99 more</p>"));
    EXPECT_THAT(page, HasSubstr("and 900 more artists"));
}

}  // namespace
}  // namespace quillon
