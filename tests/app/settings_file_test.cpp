#include "app/settings_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "driver/settings_reader.h"

namespace quillon {
namespace {

TEST(SettingGroups, ExplainEverySettingOnce) {
    std::multiset<std::string_view> explained, known;
    for (const SettingGroup& group : SettingGroups()) {
        for (const SettingExplanation& setting : group.settings) {
            explained.insert(setting.key);
            EXPECT_TRUE(setting.text.ends_with('.')) << setting.key;
        }
    }
    for (const SettingDefinition& definition : SettingDefinitions())
        known.insert(definition.key);
    EXPECT_EQ(explained, known);
    EXPECT_EQ(known.size(), 33U);
}

/// The lines that are neither comments nor blank.
std::vector<std::string> Entries(const std::string& text) {
    std::vector<std::string> entries;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && !line.starts_with(';')) entries.push_back(line);
    return entries;
}

TEST(SettingsFileText, HoldsEveryKeyWithItsDefault) {
    const auto entries = Entries(SettingsFileText({}));
    ASSERT_EQ(entries.size(), 34U);
    EXPECT_EQ(entries.front(), "[NPFrame]");
    for (const SettingDefinition& definition : SettingDefinitions()) {
        const std::string entry =
            std::string(definition.key) + '=' + std::string(definition.fallback);
        EXPECT_EQ(std::ranges::count(entries, entry), 1) << entry;
    }
}

TEST(SettingsFileText, TakesTheValuesGiven) {
    const auto entries =
        Entries(SettingsFileText({{"LibraryRoot", "D:\\Music"}, {"Reconcile", "1"}}));
    EXPECT_EQ(std::ranges::count(entries, "LibraryRoot=D:\\Music"), 1);
    EXPECT_EQ(std::ranges::count(entries, "Reconcile=1"), 1);
    EXPECT_EQ(std::ranges::count(entries, "Reconcile=0"), 0);
}

TEST(SettingsFileText, TellsTheDefaultOfEachKey) {
    const std::string text = SettingsFileText({{"ImagesWide", "7"}});
    EXPECT_NE(text.find(" Default: 5\nImagesWide=7\n"), std::string::npos);
    EXPECT_NE(text.find(" Default: empty\nLibraryRoot=\n"), std::string::npos);
}

}  // namespace
}  // namespace quillon
