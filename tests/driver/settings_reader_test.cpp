#include "driver/settings_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/failure.h"
#include "tests/support/fakes.h"

namespace quillon {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class SettingsReader : public ::testing::Test {
  protected:
    Settings Read() { return ReadSettings(world.host); }

    std::string FailureOfReading() {
        try {
            Read();
        } catch (const Failure& failure) {
            return failure.what();
        }
        return "";
    }

    SettingReading Reading(std::string_view key) {
        for (const SettingReading& reading : InspectSettings(world.host).readings) {
            if (reading.key == key) return reading;
        }
        ADD_FAILURE() << "no reading of " << key;
        return {};
    }

    fakes::FakeWorld world;
};

TEST_F(SettingsReader, AsksTheHostForThirtyThreeKeysInTheirOrder) {
    Read();
    const std::vector<std::string> keys = {
        "FromFilesPath",      "LibraryRoot",      "ExcludeList",      "PlayListPath",
        "PlayListPath2",      "Nirvis_CDJ_DB",    "AlbumCoverFolder", "PickerFormatOption",
        "ID3ActionOption",    "ID3VersionOption", "coverPath",        "ImagesWide",
        "ImagesHigh",         "PickerMinimum",    "ArtistThreshold",  "MaxPlaylistLength",
        "LibraryDepthOption", "FlatStructure",    "ReconcileOption",  "ArtistPlaylist",
        "GenrePlaylist",      "PlaylistsOnly",    "ID3Reconcile",     "AddFiles",
        "ID3Write",           "ID3Update",        "Reconcile",        "AlbumPicker",
        "PlaToM3u",           "M3uToPla",         "MakeRemote",       "PlaylistByAlbumOption",
        "RandomizePlaylist"};
    std::vector<std::string> expected;
    expected.reserve(keys.size());
    for (const std::string& key : keys) {
        expected.push_back("GetINISetting NPFrame " + key + " Quillon.ini");
    }
    EXPECT_EQ(expected.size(), 33U);
    EXPECT_THAT(world.calls.Made(), ElementsAreArray(expected));
}

TEST_F(SettingsReader, TakesTheDefaultsWhereTheFileSaysNothing) {
    const Settings settings = Read();
    EXPECT_EQ(settings.LibraryRoot, "");
    EXPECT_EQ(settings.PlayListPath, "\\");
    EXPECT_EQ(settings.coverPath, "/Quillon/albumcovers/");
    EXPECT_FALSE(settings.PickerFormatOption);
    EXPECT_EQ(settings.ImagesWide, 5);
    EXPECT_EQ(settings.ImagesHigh, 3);
    EXPECT_EQ(settings.PickerMinimum, 8);
    EXPECT_EQ(settings.ArtistThreshold, 0);
    EXPECT_EQ(settings.MaxPlaylistLength, 100);
    EXPECT_TRUE(settings.ArtistPlaylist);
    EXPECT_TRUE(settings.GenrePlaylist);
    EXPECT_TRUE(settings.ID3Reconcile);
    EXPECT_FALSE(settings.Reconcile);
    EXPECT_FALSE(settings.RandomizePlaylist);
}

TEST_F(SettingsReader, GivesEveryKeyItsOwnPlace) {
    for (const SettingDefinition& definition : SettingDefinitions()) {
        fakes::FakeWorld one;
        const bool isText = std::holds_alternative<std::string Settings::*>(definition.member);
        one.host.Set(std::string(definition.key), isText ? "/only here/" : "1");
        const Settings settings = ReadSettings(one.host);
        const Settings plain = ReadSettings(world.host);
        int changed = 0;
        for (const SettingDefinition& other : SettingDefinitions()) {
            if (other.key == "Reconcile" && definition.key == "PlaylistsOnly") continue;
            std::visit([&](auto member) { changed += settings.*member != plain.*member; },
                       other.member);
        }
        const bool isTrueByDefault = definition.fallback == "1";
        EXPECT_EQ(changed, isTrueByDefault ? 0 : 1) << definition.key;
    }
}

TEST_F(SettingsReader, KeepsTextsAsTheyStand) {
    world.host.Set("LibraryRoot", R"( D:\Music )");
    world.host.Set("ExcludeList", "Red, Blue");
    EXPECT_EQ(Read().LibraryRoot, R"( D:\Music )");
    EXPECT_EQ(Read().ExcludeList, "Red, Blue");
}

TEST_F(SettingsReader, EndsFoldersInABackslash) {
    world.host.Set("PlayListPath", R"(C:\Lists)");
    world.host.Set("PlayListPath2", R"(C:\M3u\)");
    world.host.Set("AlbumCoverFolder", R"(C:\Covers)");
    EXPECT_EQ(Read().PlayListPath, R"(C:\Lists\)");
    EXPECT_EQ(Read().PlayListPath2, R"(C:\M3u\)");
    EXPECT_EQ(Read().AlbumCoverFolder, R"(C:\Covers\)");
}

TEST_F(SettingsReader, HasPathsInOneSpellingHoweverTheyAreWritten) {
    world.host.Set("PlayListPath", "D:/Lists/");
    world.host.Set("PlayListPath2", R"(D:\M3u\\)");
    world.host.Set("AlbumCoverFolder", R"(\\nas\\covers)");
    world.host.Set("LibraryRoot", R"(D:\\Music/All)");
    world.host.Set("FromFilesPath", "D:/New");
    world.host.Set("Nirvis_CDJ_DB", "D:/Data//cdj.mdb");
    const Settings settings = Read();
    EXPECT_EQ(settings.PlayListPath, R"(D:\Lists\)");
    EXPECT_EQ(settings.PlayListPath2, R"(D:\M3u\)");
    EXPECT_EQ(settings.AlbumCoverFolder, R"(\\nas\covers\)");
    EXPECT_EQ(settings.LibraryRoot, R"(D:\Music\All)");
    EXPECT_EQ(settings.FromFilesPath, R"(D:\New)");
    EXPECT_EQ(settings.Nirvis_CDJ_DB, R"(D:\Data\cdj.mdb)");
}

TEST_F(SettingsReader, NormalisesTheWebPath) {
    world.host.Set("coverPath", "covers");
    EXPECT_EQ(Read().coverPath, "/covers/");
    world.host.Set("coverPath", "");
    EXPECT_EQ(Read().coverPath, "");
}

TEST_F(SettingsReader, SwitchesAModeOnForOneAndForTrueInAnyCase) {
    for (const char* text : {"TRUE", "true", "True", "1"}) {
        world.host.Set("AddFiles", text);
        EXPECT_TRUE(Read().AddFiles) << text;
    }
}

TEST_F(SettingsReader, LeavesAModeOffForAnythingElse) {
    for (const char* text : {"yes", "-1", "0", "2", "01", " 1", "", "on", "truth"}) {
        world.host.Set("AddFiles", text);
        EXPECT_FALSE(Read().AddFiles) << text;
    }
}

TEST_F(SettingsReader, ReadsALenientIntegerThatIsNoneAsZero) {
    for (const char* text : {"abc", "", "12 songs", "70000", "-32769", "1e99"}) {
        world.host.Set("ArtistThreshold", text);
        EXPECT_EQ(Read().ArtistThreshold, 0) << text;
    }
}

TEST_F(SettingsReader, ReadsALenientIntegerThatIsOne) {
    const std::vector<std::pair<const char*, int>> cases = {
        {"7", 7}, {" 7 ", 7}, {"-3", -3}, {"2.5", 2}, {"3.5", 4}, {"32767", 32767}};
    for (const auto& [text, value] : cases) {
        world.host.Set("MaxPlaylistLength", text);
        EXPECT_EQ(Read().MaxPlaylistLength, value) << text;
    }
}

TEST_F(SettingsReader, ReadsAStrictBooleanFromWordsAndNumbers) {
    const std::vector<std::pair<const char*, bool>> cases = {
        {"True", true}, {"FALSE", false}, {"-1", true}, {"2", true}, {"0", false}};
    for (const auto& [text, value] : cases) {
        world.host.Set("ID3VersionOption", text);
        EXPECT_EQ(Read().ID3VersionOption, value) << text;
    }
}

TEST_F(SettingsReader, RefusesAStrictTextThatDoesNotConvertAndNamesKeyAndText) {
    world.host.Set("ImagesWide", "abc");
    EXPECT_EQ(FailureOfReading(), "Type mismatch: ImagesWide=abc");
}

TEST_F(SettingsReader, RefusesEveryStrictKeyInItsTurn) {
    for (const char* key : {"PickerFormatOption", "ID3ActionOption", "ID3VersionOption",
                            "ImagesWide", "ImagesHigh", "PickerMinimum"}) {
        world.host.settings = {};
        world.host.Set(key, "yes");
        EXPECT_EQ(FailureOfReading(), "Type mismatch: " + std::string(key) + "=yes");
        world.host.Set(key, "");
        EXPECT_EQ(FailureOfReading(), "Type mismatch: " + std::string(key) + "=");
    }
}

TEST_F(SettingsReader, RefusesAStrictIntegerThatDoesNotFit) {
    world.host.Set("PickerMinimum", "40000");
    EXPECT_EQ(FailureOfReading(), "Overflow: PickerMinimum=40000");
}

TEST_F(SettingsReader, SwitchesReconcileOnForPlaylistsOnly) {
    world.host.Set("PlaylistsOnly", "1");
    world.host.Set("Reconcile", "0");
    EXPECT_TRUE(Read().Reconcile);
    EXPECT_TRUE(InspectSettings(world.host).settings.Reconcile);
}

TEST_F(SettingsReader, SingleReadersGiveTheDefaultForAnAbsentKey) {
    EXPECT_TRUE(ReadBoolSetting(world.host, "Anything", 1));
    EXPECT_FALSE(ReadBoolSetting(world.host, "Anything", 0));
    EXPECT_FALSE(ReadBoolSetting(world.host, "Anything", -1));
    EXPECT_EQ(ReadIntSetting(world.host, "Anything", 100), 100);
    world.host.Set("Anything", "abc");
    EXPECT_FALSE(ReadBoolSetting(world.host, "Anything", 1));
    EXPECT_EQ(ReadIntSetting(world.host, "Anything", 100), 0);
}

TEST_F(SettingsReader, ReportsAPlainSettingWithoutARemark) {
    world.host.Set("PlayListPath", R"(C:\Lists)");
    const SettingReading reading = Reading("PlayListPath");
    EXPECT_EQ(reading.text, R"(C:\Lists)");
    EXPECT_EQ(reading.value, R"(C:\Lists\)");
    EXPECT_TRUE(reading.fromFile);
    EXPECT_TRUE(reading.readable);
    EXPECT_EQ(reading.remark, "");
}

TEST_F(SettingsReader, ReportsThatADefaultHolds) {
    const SettingReading reading = Reading("MaxPlaylistLength");
    EXPECT_EQ(reading.text, "100");
    EXPECT_EQ(reading.value, "100");
    EXPECT_FALSE(reading.fromFile);
}

TEST_F(SettingsReader, ReportsThatTheFileHoldsTheDefaultsText) {
    world.host.Set("MaxPlaylistLength", "100");
    EXPECT_TRUE(Reading("MaxPlaylistLength").fromFile);
}

TEST_F(SettingsReader, RemarksOnTextsThatCountAsSomethingElse) {
    world.host.Set("ArtistThreshold", "abc");
    world.host.Set("AddFiles", "yes");
    EXPECT_EQ(Reading("ArtistThreshold").remark, "Type mismatch: counts as 0");
    EXPECT_EQ(Reading("AddFiles").remark, "Type mismatch: counts as False");
    EXPECT_TRUE(InspectSettings(world.host).readable);
}

TEST_F(SettingsReader, ReportsEveryUnreadableSettingAtOnce) {
    world.host.Set("ImagesWide", "wide");
    world.host.Set("ID3ActionOption", "maybe");
    const SettingsReport report = InspectSettings(world.host);
    EXPECT_FALSE(report.readable);
    EXPECT_EQ(report.readings.size(), 33U);
    EXPECT_EQ(report.settings.ImagesWide, 5);
    for (const char* key : {"ImagesWide", "ID3ActionOption"}) {
        const SettingReading reading = Reading(key);
        EXPECT_FALSE(reading.readable);
        EXPECT_EQ(reading.value, "");
        EXPECT_EQ(reading.remark, "Type mismatch: no run can start");
    }
}

TEST_F(SettingsReader, ReportAgreesWithWhatARunReads) {
    world.host.Set("ImagesWide", "4");
    world.host.Set("AddFiles", "1");
    const Settings report = InspectSettings(world.host).settings;
    const Settings read = Read();
    for (const SettingDefinition& definition : SettingDefinitions()) {
        std::visit([&](auto member) { EXPECT_EQ(report.*member, read.*member); },
                   definition.member);
    }
}

TEST_F(SettingsReader, LogsNothing) {
    world.host.Set("ArtistThreshold", "abc");
    Read();
    EXPECT_THAT(world.host.log, IsEmpty());
}

}  // namespace
}  // namespace quillon
