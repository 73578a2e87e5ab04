#include "app/serve/player_page.h"

#include <gtest/gtest.h>

#include "tests/app/serve/has.h"

namespace quillon {
namespace {

NameTable Names() {
    NameTable names;
    names.albums["252E671073EC0001"] = {
        "Alder", "First Light", {{1, "Dawn"}, {2, "<script>alert(1)</script>"}}};
    return names;
}

std::string Sentence(const std::string& query) {
    RequestLog log;
    if (!log.Add(QueryValues(query), "")) return "(no request)";
    return RequestSentence(log.Requests().front(), Names());
}

std::string Page(const RequestLog& log, const std::string& problem = "") {
    return RequestsPage(log.Requests(), {std::make_shared<const NameTable>(Names()), problem},
                        "/i");
}

TEST(RequestSentence, NamesAlbumAndTrack) {
    EXPECT_EQ(Sentence("Frame=Picker&ClientAction=add&CDJID=252E671073EC0001&ref=0"),
              "Add First Light by Alder to the playlist");
    EXPECT_EQ(Sentence("ClientAction=next&CDJID=252E671073EC0001"),
              "Play First Light by Alder next");
    EXPECT_EQ(Sentence("ClientAction=play&CDJID=252E671073EC0001&ref=1"),
              "Play track 1, Dawn, of First Light by Alder now");
}

TEST(RequestSentence, ShowsIdentifiersThatTheDatabaseDoesNotKnow) {
    EXPECT_EQ(Sentence("ClientAction=add&CDJID=9&ref=0"), "Add album 9 to the playlist");
    EXPECT_EQ(Sentence("ClientAction=add&CDJID=9&ref=3"), "Add track 3 of album 9 to the playlist");
    EXPECT_EQ(Sentence("ClientAction=add&CDJID=252E671073EC0001&ref=3"),
              "Add track 3 of First Light by Alder to the playlist");
    EXPECT_EQ(Sentence("ClientAction=add&CDJID=252E671073EC0001&ref=1x"),
              "Add track 1x of First Light by Alder to the playlist");
}

TEST(RequestSentence, KnowsClearAndSave) {
    EXPECT_EQ(Sentence("Frame=Picker&ClientAction=clear"), "Clear the playlist");
    EXPECT_EQ(Sentence("filename=My+list&save=Save+Playlist&ClientAction=save"),
              "Save the playlist as My list");
}

TEST(RequestSentence, SaysWhatItDoesNotUnderstand) {
    EXPECT_EQ(Sentence("ClientAction=add&ClientAction=next"), "Not understood: add, next");
    EXPECT_EQ(Sentence("ClientAction="), "Not understood: ");
}

TEST(RequestLog, AVisitWithoutAnActionIsNoRequest) {
    EXPECT_EQ(Sentence(""), "(no request)");
    EXPECT_EQ(Sentence("Frame=Picker&CDJID=1"), "(no request)");
}

TEST(RequestLog, KeepsTheNewestAndCountsAll) {
    RequestLog log;
    for (std::size_t i = 0; i < RequestLog::Capacity + 5; ++i)
        log.Add(QueryValues("ClientAction=play&CDJID=" + std::to_string(i)), "12:00:00");
    const auto requests = log.Requests();
    ASSERT_EQ(requests.size(), RequestLog::Capacity);
    EXPECT_EQ(requests.front().number, RequestLog::Capacity + 5);
    EXPECT_EQ(requests.front().cdjid, std::to_string(RequestLog::Capacity + 4));
    EXPECT_EQ(requests.back().number, 6U);
}

TEST(PlayerPage, ShowsNewestFirst) {
    RequestLog log;
    EXPECT_TRUE(Has(Page(log), "No request so far."));
    log.Add(QueryValues("ClientAction=clear"), "12:00:00");
    log.Add(QueryValues("ClientAction=play&CDJID=252E671073EC0001&ref=1"), "12:00:01");
    const std::string page = Page(log);
    EXPECT_FALSE(Has(page, "No request so far."));
    EXPECT_LT(page.find("12:00:01"), page.find("Clear the playlist"));
    EXPECT_TRUE(Has(page, "<code>CDJID=252E671073EC0001</code>"));
    EXPECT_TRUE(Has(page, "<code>ref=1</code>"));
    EXPECT_TRUE(Has(page, "href=\"/i\""));
}

TEST(PlayerPage, EveryValueIsTextOnly) {
    RequestLog log;
    const std::string bad = "%3Cimg%20src%3Dx%20onerror%3Dalert(1)%3E%22%27%26";
    log.Add(
        QueryValues("ClientAction=" + bad + "&CDJID=" + bad + "&ref=" + bad + "&filename=" + bad),
        "<b>");
    log.Add(QueryValues("ClientAction=play&CDJID=252E671073EC0001&ref=2"), "");
    log.Add(QueryValues("ClientAction=save&filename=" + bad), "");
    const std::string page = Page(log, "<i>broken</i>");
    for (const char* const part : {"<img", "<b>", "<i>", "<script"})
        EXPECT_FALSE(Has(page, part)) << part;
    EXPECT_TRUE(Has(page, "&#60;img src=x onerror=alert(1)&#62;&#34;&#39;&#38;"));
    EXPECT_TRUE(Has(page, "&#60;script&#62;alert(1)"));
    EXPECT_TRUE(Has(page, "&#60;i&#62;broken"));
}

}  // namespace
}  // namespace quillon
