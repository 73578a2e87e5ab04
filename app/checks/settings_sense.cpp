#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <vector>

#include "app/checks/settings_check.h"
#include "driver/misspelt_setting.h"
#include "driver/modes.h"
#include "driver/nearest_name.h"
#include "driver/settings_reader.h"
#include "picker/layout.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

/// The part of the settings' check that asks what was meant.
namespace quillon {
namespace {

std::vector<std::string_view> KnownKeys() {
    std::vector<std::string_view> keys;
    for (const SettingDefinition& definition : SettingDefinitions())
        keys.push_back(definition.key);
    return keys;
}

bool IsAmong(std::string_view key, const std::vector<std::string_view>& keys) {
    return std::ranges::any_of(
        keys, [key](std::string_view known) { return EqualIgnoringCase(key, known); });
}

void CheckPickerLayout(const Settings& settings, Findings& findings) try {
    const PickerLayout layout(settings);
} catch (const Failure& failure) {
    const Mode* const mode = SelectMode(settings);
    const bool isForThis = mode != nullptr && mode->setting == &Settings::AlbumPicker;
    const std::string sizes =
        fmt::format("ImagesWide={} and ImagesHigh={}", settings.ImagesWide, settings.ImagesHigh);
    findings.Add(
        isForThis,
        failure.Number() == FailureNumber::Overflow
            ? fmt::format("{} make more than 32767 albums a page, and AlbumPicker makes no "
                          "page at all. Write smaller numbers",
                          sizes)
            : fmt::format("{} leave no room for an album, and AlbumPicker makes no page at "
                          "all. Write 1 or more for both",
                          sizes));
}

void CheckPlaylistLength(const Settings& settings, Findings& findings) {
    if (!settings.GenrePlaylist && !settings.ArtistPlaylist) return;
    if (settings.MaxPlaylistLength == 0) {
        findings.Caution(
            "MaxPlaylistLength=0: each track of a genre or artist gets a playlist file of its own. "
            "Write the length you want, for example 100");
    } else if (settings.MaxPlaylistLength < 0) {
        findings.Caution(fmt::format(
            "MaxPlaylistLength={}: the first playlist of each genre or artist stays empty and each "
            "track gets a file of its own after it. Write the length you want, for example 100",
            settings.MaxPlaylistLength));
    }
}

}  // namespace

void CheckUnreadKeys(HostFolder& host, const Settings& settings, Findings& findings) {
    const std::string objection = ObjectionToMisspeltSetting(host, settings);
    if (!objection.empty()) findings.Problem(objection);
    const std::vector<std::string_view> known = KnownKeys();
    std::string others;
    for (const auto& [key, value] : host.Entries(SettingsSection, SettingsFile)) {
        if (IsAmong(key, known)) continue;
        const std::string_view meant = NearestName(key, known);
        if (meant.empty()) {
            others += (others.empty() ? "" : ", ") + key;
        } else if (objection.empty() || meant != "ID3Reconcile") {
            findings.Caution(
                fmt::format("{} has {}={}, which nothing reads. If {} is meant, correct the name",
                            SettingsFile, key, value, meant));
        }
    }
    if (!others.empty()) {
        findings.Caution(fmt::format("{} has keys in [{}] that nothing reads: {}", SettingsFile,
                                     SettingsSection, others));
    }
}

void CheckNumbers(const Settings& settings, Findings& findings) {
    CheckPickerLayout(settings, findings);
    CheckPlaylistLength(settings, findings);
    if (settings.PickerMinimum < 1) {
        findings.Caution(
            fmt::format("PickerMinimum={} leaves no album out of the album picker, "
                        "not even those with a count of 0 tracks. Write 1 or more",
                        settings.PickerMinimum));
    }
}

}  // namespace quillon
