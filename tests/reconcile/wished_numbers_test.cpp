#include "reconcile/wished_numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "tests/support/test_library.h"

namespace quillon {
namespace {

using support::RawTag;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(LeadingNumber, IsOneToThreeDigitsThatNoLetterFollows) {
    EXPECT_EQ(LeadingNumber("07 - Song.mp3"), 7);
    EXPECT_EQ(LeadingNumber("7.mp3"), 7);
    EXPECT_EQ(LeadingNumber("12_Song.mp3"), 12);
    EXPECT_EQ(LeadingNumber("101 Song.mp3"), 101);
    for (const char* const name : {"1999.mp3", "Song 1.mp3", "2nd Song.mp3", "00.mp3", ""})
        EXPECT_EQ(LeadingNumber(name), std::nullopt) << name;
}

TEST(OddNumbers, NamesGapsAndDoublesAndNothingElse) {
    const auto odd = [](const std::vector<int>& numbers) {
        std::vector<WishedNumber> wishes;
        for (const int number : numbers)
            wishes.push_back(
                {number == 0 ? std::nullopt : std::optional<std::int64_t>(number), ""});
        return OddNumbers(wishes);
    };
    EXPECT_EQ(odd({1, 2, 3}), "");
    EXPECT_EQ(odd({1, 2, 0, 0}), "");
    EXPECT_EQ(odd({1, 3, 3, 3, 4}), "2 is missing, 3 is there twice");
    EXPECT_EQ(odd({1, 2, 150}), "") << "150 is no number of a track";
    EXPECT_EQ(odd({20}),
              "1 is missing, 2 is missing, 3 is missing, 4 is missing, 5 is missing ...");
}

class NumbersFromTags : public ::testing::Test {
  protected:
    NumbersFromTags() { library.run.modern.numbersFromTags = true; }

    void Add(const std::string& name, std::uint8_t number, int age) {
        RawTag tag;
        tag.track = number;
        library.AddFile(R"(A\B\)" + name, tag, age);
    }

    support::TestLibrary library;
};

TEST_F(NumbersFromTags, StayWhateverTheTimesOfFilesAre) {
    Add("x.mp3", 2, 0);
    Add("y.mp3", 3, 1);
    Add("z.mp3", 1, 2);
    for (int run = 0; run < 2; ++run) {
        library.Reconcile();
        EXPECT_THAT(library.Tracks(),
                    ElementsAre(R"(A\B\x.mp3|x|2)", R"(A\B\y.mp3|y|3)", R"(A\B\z.mp3|z|1)"));
    }
    EXPECT_THAT(library.host.log, IsEmpty());
    EXPECT_EQ(library.run.counts.tracksChanged, 0U);
}

TEST_F(NumbersFromTags, AreKeptWithoutALookIntoFilesWhereNothingIsNew) {
    Add("x.mp3", 2, 0);
    Add("y.mp3", 1, 1);
    library.Reconcile();
    std::size_t opened = 0;
    library.files.beforeOpenBinary = [&opened](std::string_view) { ++opened; };
    library.Reconcile();
    EXPECT_EQ(opened, 0U);
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\x.mp3|x|2)", R"(A\B\y.mp3|y|1)"));
}

TEST_F(NumbersFromTags, ComeFromNamesWhereTagsHaveNone) {
    Add("02 - b.mp3", 0, 0);
    Add("01 - c.mp3", 0, 1);
    Add("a.mp3", 0, 2);
    Add("03 - d.mp3", 4, 3);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(), ElementsAre(R"(A\B\01 - c.mp3|c|1)", R"(A\B\02 - b.mp3|b|2)",
                                              R"(A\B\03 - d.mp3|d|4)", R"(A\B\a.mp3|a|3)"));
}

TEST_F(NumbersFromTags, OddOnesAreNamedOnce) {
    Add("a.mp3", 1, 2);
    Add("b.mp3", 1, 1);
    Add("c.mp3", 4, 0);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\a.mp3|a|1)", R"(A\B\b.mp3|b|2)", R"(A\B\c.mp3|c|3)"));
    EXPECT_THAT(library.host.log,
                ElementsAre("Quillon: Track numbers of the files of A\\B: 1 is there twice, 2 is "
                            "missing, 3 is missing"));
    library.host.log.clear();
    library.Reconcile();
    EXPECT_THAT(library.host.log, IsEmpty());
}

TEST_F(NumbersFromTags, AFileThatIsNewTakesThePlaceThatItAsksFor) {
    Add("a.mp3", 1, 0);
    Add("c.mp3", 3, 1);
    library.Reconcile();
    Add("b.mp3", 2, 9);
    library.Reconcile();
    EXPECT_THAT(library.Tracks(),
                ElementsAre(R"(A\B\a.mp3|a|1)", R"(A\B\b.mp3|b|2)", R"(A\B\c.mp3|c|3)"));
}

}  // namespace
}  // namespace quillon
