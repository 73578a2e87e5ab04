#include "picker/cover_names.h"

#include <gmock/gmock.h>

namespace quillon {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> NamesOf(const std::vector<std::string>& sources) {
    std::vector<std::string> names;
    std::vector<CoverImage> images;
    for (const std::string& source : sources)
        images.push_back({source, source.substr(source.rfind('\\') + 1)});
    const CoverNames covers(R"(C:\Web\)", images);
    for (const CoverCopy& copy : covers.Copies())
        names.push_back(copy.source + " -> " + copy.name + (copy.contested ? " !" : ""));
    return names;
}

TEST(WebSafeName, DropsBlanksAndWhatHasAMeaningInAddresses) {
    EXPECT_EQ(WebSafeName("\"a: b?.jpg"), "ab.jpg");
    EXPECT_EQ(WebSafeName("a><+[]{}~@^%#$*|`b.jpg"), "ab.jpg");
}

TEST(WebSafeName, TurnsSlashesIntoHyphens) {
    EXPECT_EQ(WebSafeName("AC/DC\\x.jpg"), "AC-DC-x.jpg");
}

TEST(WebSafeName, TakesTheUsualAccentsOff) {
    EXPECT_EQ(WebSafeName("àâèéêëîôùûç.jpg"), "aaeeeeiouuc.jpg");
    EXPECT_EQ(WebSafeName("ÀÂÈÉÊËÎÔÙÛÇ.jpg"), "AAEEEEIOUUC.jpg");
}

TEST(WebSafeName, ChangesNothingElse) {
    EXPECT_EQ(WebSafeName("ñäöüßÄÖï&'(),;=!-_.jpg"), "ñäöüßÄÖï&'(),;=!-_.jpg");
}

TEST(CoverNames, NamesEachImageOnce) {
    EXPECT_THAT(NamesOf({R"(D:\c\A B.jpg)", R"(D:\c\c.gif)", R"(d:\C\a b.JPG)"}),
                ElementsAre(R"(D:\c\A B.jpg -> AB.jpg)", R"(D:\c\c.gif -> c.gif)"));
}

TEST(CoverNames, KeepsImagesOfTheSameWebSafeNameApart) {
    EXPECT_THAT(NamesOf({R"(D:\c\A B.jpg)", R"(D:\c\AB.jpg)", R"(D:\e\ab.jpg)", R"(D:\c\x.jpg)"}),
                ElementsAre(R"(D:\c\A B.jpg -> AB.jpg !)", R"(D:\c\AB.jpg -> AB-2.jpg !)",
                            R"(D:\e\ab.jpg -> ab-3.jpg !)", R"(D:\c\x.jpg -> x.jpg)"));
}

TEST(CoverNames, DoesNotTakeANumberThatIsSomebodysName) {
    EXPECT_THAT(NamesOf({R"(D:\c\a-2.jpg)", R"(D:\c\a.jpg)", R"(D:\e\a.jpg)"}),
                ElementsAre(R"(D:\c\a-2.jpg -> a-2.jpg)", R"(D:\c\a.jpg -> a.jpg !)",
                            R"(D:\e\a.jpg -> a-3.jpg !)"));
}

TEST(CoverNames, LeavesThePlaceholdersNameToThePlaceholder) {
    EXPECT_THAT(NamesOf({R"(D:\c\not fnd.jpg)"}),
                ElementsAre(R"(D:\c\not fnd.jpg -> notfnd-2.jpg)"));
}

TEST(CoverNames, OverwritesNoImageThatLiesInTheWebFolderItself) {
    EXPECT_THAT(NamesOf({R"(C:\Web\A B.jpg)", R"(C:\Web\AB.jpg)"}),
                ElementsAre(R"(C:\Web\A B.jpg -> AB-2.jpg)", R"(C:\Web\AB.jpg -> AB.jpg)"));
}

TEST(CoverNames, NumbersANameWithoutExtensionAtItsEnd) {
    EXPECT_THAT(NamesOf({R"(D:\c\a)", R"(D:\e\a)"}),
                ElementsAre(R"(D:\c\a -> a !)", R"(D:\e\a -> a-2 !)"));
}

}  // namespace
}  // namespace quillon
