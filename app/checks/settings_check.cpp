#include "app/checks/settings_check.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/table_printer.h"
#include "app/text/display_text.h"
#include "driver/misspelt_setting.h"
#include "driver/modes.h"
#include "driver/nearest_name.h"
#include "driver/settings_reader.h"
#include "picker/layout.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/host_settings.h"

namespace quillon {
namespace {

constexpr std::size_t WidestValue = 26;

const SettingDefinition& DefinitionOf(const SettingReading& reading) {
    return *std::ranges::find(SettingDefinitions(), reading.key, &SettingDefinition::key);
}

bool IsNumber(SettingKind kind) {
    return kind == SettingKind::Integer || kind == SettingKind::StrictInteger;
}

/// What is wrong with the text, in few words.
std::string Oddity(const SettingReading& reading) {
    if (reading.remark.empty()) return "";
    if (!IsNumber(DefinitionOf(reading).kind)) return "not 0 or 1";
    return IsNumeric(reading.text) ? "out of range" : "not a number";
}

/// The same for the table, with the text where the value is another one.
std::string Remark(const SettingReading& reading, const Settings& settings) {
    constexpr std::size_t Widest = 21;
    const bool isReconcile =
        DefinitionOf(reading).member == SettingDefinition::Member(&Settings::Reconcile);
    if (isReconcile && settings.PlaylistsOnly) return "on: PlaylistsOnly";
    std::string oddity = Oddity(reading);
    if (oddity.empty() || !reading.readable) return oddity;
    return FitColumns(oddity + ": " + OneLine(reading.text), Widest);
}

void FindOddity(const SettingReading& reading, Findings& findings) {
    const std::string oddity = Oddity(reading);
    if (oddity.empty()) return;
    const SettingDefinition& definition = DefinitionOf(reading);
    const std::string advice =
        fmt::format("Write {}, or delete the line to get the default {}",
                    IsNumber(definition.kind) ? "a whole number from -32768 to 32767" : "0 or 1",
                    definition.fallback);
    const std::string effect =
        reading.readable ? "counts as " + reading.value : "no run starts with it";
    findings.Add(!reading.readable, fmt::format("Setting {}={} is {} and {}. {}", reading.key,
                                                reading.text, oddity, effect, advice));
}

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

Settings CheckSettings(Host& host, std::ostream& out, Findings& findings) {
    const SettingsReport report = InspectSettings(host);
    out << fmt::format("\nSettings ({}, section {})\n", SettingsFile, SettingsSection);
    TablePrinter table(
        out, {"Setting", "Value", "Source", "Remark"},
        {.indent = 2, .widestColumn = WidestValue, .countsRows = false, .breaksLines = true});
    for (const SettingReading& reading : report.readings) {
        const std::string value = reading.readable ? reading.value : reading.text;
        table.AddRow({{std::string(reading.key)},
                      {value.empty() ? "(empty)" : value},
                      {reading.fromFile ? "file" : "default"},
                      {Remark(reading, report.settings)}});
        FindOddity(reading, findings);
    }
    table.Finish();
    return report.settings;
}

void CheckHostSettings(Host& host, std::ostream& out, Findings& findings) {
    const std::string downloadHost = DownloadHost(host);
    const CoverTreeScan covers = ReadCoverTreeScan(host);
    const auto line = [&out](std::string_view key, const std::string& value) {
        out << fmt::format("  {:<22} {}\n", key, value.empty() ? "(empty)" : OneLine(value));
    };
    out << fmt::format("\nHost settings ({})\n", HostSettingsFile);
    line("Download Host", downloadHost);
    line("Covers ScanLibrary", covers.ScanLibrary ? "True" : "False");
    line("Covers ReservedFolder", covers.ReservedFolder);
    if (downloadHost.find('-') != std::string::npos) {
        findings.Caution(fmt::format(
            "Host {} of [Download] in {} has a hyphen: a part of it becomes the genre of songs "
            "whose artist is in the download table. Choose a name without a hyphen",
            downloadHost, HostSettingsFile));
    }
}

void CheckPlugin(Host& host, std::ostream& out, Findings& findings) {
    const std::vector<std::string> plugins = host.GetPlugins();
    const bool enabled = std::ranges::find(plugins, "Quillon") != plugins.end();
    out << fmt::format("Plug-in Quillon  {}\n", enabled ? "enabled" : "not enabled");
    if (!enabled)
        findings.Problem(
            "The plug-in is not enabled, so no run starts: host.ini needs Quillon=1 in [Plugins]");
}

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

void CheckRepeatedKeys(HostFolder& host, Findings& findings) {
    std::map<std::string, std::string> first;  // lines by key in capitals
    std::set<std::string> told;
    for (const std::string& line : host.GetINILines(SettingsSection, SettingsFile)) {
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        const std::string key = UpperCase(Trim(std::string_view(line).substr(0, equals)));
        const auto [place, isFirst] = first.try_emplace(key, line);
        const auto valueIn = [](std::string_view of) { return Trim(of.substr(of.find('=') + 1)); };
        if (isFirst || valueIn(place->second) == valueIn(line) || !told.insert(key).second)
            continue;
        findings.Caution(
            fmt::format("{} has {} and further down {}. The first one counts. Delete the other",
                        SettingsFile, place->second, line));
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
