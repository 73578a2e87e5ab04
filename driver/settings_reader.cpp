#include "driver/settings_reader.h"

#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/paths.h"

namespace quillon {
namespace {

using Kind = SettingKind;

constexpr std::array Definitions{
    SettingDefinition{"FromFilesPath", Kind::Path, "", &Settings::FromFilesPath},
    SettingDefinition{"LibraryRoot", Kind::Path, "", &Settings::LibraryRoot},
    SettingDefinition{"ExcludeList", Kind::Text, "", &Settings::ExcludeList},
    SettingDefinition{"PlayListPath", Kind::Folder, "", &Settings::PlayListPath},
    SettingDefinition{"PlayListPath2", Kind::Folder, "", &Settings::PlayListPath2},
    SettingDefinition{"Nirvis_CDJ_DB", Kind::Path, "", &Settings::Nirvis_CDJ_DB},
    SettingDefinition{"AlbumCoverFolder", Kind::Folder, "", &Settings::AlbumCoverFolder},
    SettingDefinition{"PickerFormatOption", Kind::StrictBoolean, "0",
                      &Settings::PickerFormatOption},
    SettingDefinition{"ID3ActionOption", Kind::StrictBoolean, "0", &Settings::ID3ActionOption},
    SettingDefinition{"ID3VersionOption", Kind::StrictBoolean, "0", &Settings::ID3VersionOption},
    SettingDefinition{"coverPath", Kind::WebPath, "/Quillon/albumcovers/", &Settings::coverPath},
    SettingDefinition{"ImagesWide", Kind::StrictInteger, "5", &Settings::ImagesWide},
    SettingDefinition{"ImagesHigh", Kind::StrictInteger, "3", &Settings::ImagesHigh},
    SettingDefinition{"PickerMinimum", Kind::StrictInteger, "8", &Settings::PickerMinimum},
    SettingDefinition{"ArtistThreshold", Kind::Integer, "0", &Settings::ArtistThreshold},
    SettingDefinition{"MaxPlaylistLength", Kind::Integer, "100", &Settings::MaxPlaylistLength},
    SettingDefinition{"LibraryDepthOption", Kind::Boolean, "0", &Settings::LibraryDepthOption},
    SettingDefinition{"FlatStructure", Kind::Boolean, "0", &Settings::FlatStructure},
    SettingDefinition{"ReconcileOption", Kind::Boolean, "0", &Settings::ReconcileOption},
    SettingDefinition{"ArtistPlaylist", Kind::Boolean, "1", &Settings::ArtistPlaylist},
    SettingDefinition{"GenrePlaylist", Kind::Boolean, "1", &Settings::GenrePlaylist},
    SettingDefinition{"PlaylistsOnly", Kind::Boolean, "0", &Settings::PlaylistsOnly},
    SettingDefinition{"ID3Reconcile", Kind::Boolean, "1", &Settings::ID3Reconcile},
    SettingDefinition{"AddFiles", Kind::Boolean, "0", &Settings::AddFiles},
    SettingDefinition{"ID3Write", Kind::Boolean, "0", &Settings::ID3Write},
    SettingDefinition{"ID3Update", Kind::Boolean, "0", &Settings::ID3Update},
    SettingDefinition{"Reconcile", Kind::Boolean, "0", &Settings::Reconcile},
    SettingDefinition{"AlbumPicker", Kind::Boolean, "0", &Settings::AlbumPicker},
    SettingDefinition{"PlaToM3u", Kind::Boolean, "0", &Settings::PlaToM3u},
    SettingDefinition{"M3uToPla", Kind::Boolean, "0", &Settings::M3uToPla},
    SettingDefinition{"MakeRemote", Kind::Boolean, "0", &Settings::MakeRemote},
    SettingDefinition{"PlaylistByAlbumOption", Kind::Boolean, "0",
                      &Settings::PlaylistByAlbumOption},
    SettingDefinition{"RandomizePlaylist", Kind::Boolean, "0", &Settings::RandomizePlaylist},
};

/// A text that no settings file holds, to learn from the host whether a key is there.
constexpr std::string_view Absent = "\x01(absent)";

/// Why a text does not stand for a value of its kind; empty when it does.
using Problem = std::optional<FailureNumber>;

std::string SettingText(Host& host, std::string_view key, std::string_view fallback) {
    return host.GetINISetting(SettingsSection, key, fallback, SettingsFile);
}

Problem Convert(SettingKind kind, std::string_view text, std::string& value) {
    switch (kind) {
        case Kind::Path:
            value = PlainPath(text);
            break;
        case Kind::Folder:
            value = AddBackslash(PlainPath(text));
            break;
        case Kind::WebPath:
            value = FixPath(text);
            break;
        default:
            value = text;
            break;
    }
    return std::nullopt;
}

Problem Convert(SettingKind kind, std::string_view text, std::int16_t& value) {
    using Limits = std::numeric_limits<std::int16_t>;
    const std::optional<double> number = ToNumber(text);
    if (number && std::nearbyint(*number) >= Limits::min() &&
        std::nearbyint(*number) <= Limits::max()) {
        value = ToInteger(*number);
        return std::nullopt;
    }
    if (!IsStrict(kind)) value = 0;
    return number ? FailureNumber::Overflow : FailureNumber::TypeMismatch;
}

Problem Convert(SettingKind kind, std::string_view text, bool& value) {
    const std::string lower = LowerCase(text);
    const bool isWord = lower == "true" || lower == "false";
    if (IsStrict(kind)) {
        if (!isWord && !IsNumeric(text)) return FailureNumber::TypeMismatch;
        value = ToBoolean(text);
        return std::nullopt;
    }
    value = text == "1" || lower == "true";
    const bool isClear = isWord || text == "1" || text == "0";
    return isClear ? Problem() : FailureNumber::TypeMismatch;
}

Problem Convert(const SettingDefinition& definition, std::string_view text, Settings& settings) {
    return std::visit([&](auto member) { return Convert(definition.kind, text, settings.*member); },
                      definition.member);
}

std::string TextOf(const std::string& value) {
    return value;
}
std::string TextOf(std::int16_t value) {
    return std::to_string(value);
}
std::string TextOf(bool value) {
    return value ? "True" : "False";
}

std::string ValueText(const SettingDefinition& definition, const Settings& settings) {
    return std::visit([&](auto member) { return TextOf(settings.*member); }, definition.member);
}

void ApplyPlaylistsOnly(Settings& settings) {
    if (settings.PlaylistsOnly) settings.Reconcile = true;
}

SettingReading Inspect(Host& host, const SettingDefinition& definition, Settings& settings) {
    SettingReading reading;
    reading.key = definition.key;
    reading.text = SettingText(host, definition.key, Absent);
    reading.fromFile = reading.text != Absent;
    if (!reading.fromFile) reading.text = definition.fallback;

    const Problem problem = Convert(definition, reading.text, settings);
    reading.readable = !problem || !IsStrict(definition.kind);
    if (reading.readable) reading.value = ValueText(definition, settings);
    if (problem) {
        reading.remark = FailureText(*problem);
        reading.remark += reading.readable ? ": counts as " + reading.value : ": no run can start";
    }
    return reading;
}

}  // namespace

bool IsStrict(SettingKind kind) {
    return kind == SettingKind::StrictBoolean || kind == SettingKind::StrictInteger;
}

std::span<const SettingDefinition> SettingDefinitions() {
    return Definitions;
}

Settings ReadSettings(Host& host) {
    Settings settings;
    for (const SettingDefinition& definition : Definitions) {
        const std::string text = SettingText(host, definition.key, definition.fallback);
        const Problem problem = Convert(definition, text, settings);
        if (problem && IsStrict(definition.kind)) {
            throw Failure(*problem, std::string(definition.key) + "=" + text);
        }
    }
    ApplyPlaylistsOnly(settings);
    return settings;
}

bool ReadBoolSetting(Host& host, std::string_view key, std::int16_t fallback) {
    bool value = false;
    Convert(Kind::Boolean, SettingText(host, key, std::to_string(fallback)), value);
    return value;
}

bool IsInFile(Host& host, std::string_view key) {
    return SettingText(host, key, Absent) != Absent;
}

std::int16_t ReadIntSetting(Host& host, std::string_view key, std::int16_t fallback) {
    std::int16_t value = 0;
    Convert(Kind::Integer, SettingText(host, key, std::to_string(fallback)), value);
    return value;
}

SettingsReport InspectSettings(Host& host) {
    SettingsReport report;
    for (const SettingDefinition& definition : Definitions) {
        report.readings.push_back(Inspect(host, definition, report.settings));
        report.readable = report.readable && report.readings.back().readable;
    }
    ApplyPlaylistsOnly(report.settings);
    return report;
}

}  // namespace quillon
