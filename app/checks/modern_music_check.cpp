#include "app/checks/modern_music_check.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <ostream>
#include <string_view>
#include <utility>

#include "platform/basic_text.h"
#include "run/modern_music.h"

namespace quillon {
namespace {

/// Keys of the same sections that others read.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> OtherKeys{
    {{"Library", "FollowMovedFiles"}, {"Covers", "ScanLibrary"}, {"Covers", "ReservedFolder"}}};

bool IsReadElsewhere(std::string_view section, std::string_view key) {
    return std::ranges::any_of(OtherKeys, [&](const auto& other) {
        return other.first == section && EqualIgnoringCase(other.second, key);
    });
}

void FindUnknownKeys(HostFolder& host, std::string_view section, Findings& findings) {
    std::string known;
    for (const ModernKey& key : ModernKeys)
        if (key.section == section) known.append(known.empty() ? "" : " or ").append(key.key);
    for (const auto& [name, value] : host.Entries(section, HostSettingsFile)) {
        const bool isKnown = std::ranges::any_of(ModernKeys, [&](const ModernKey& key) {
            return key.section == section && EqualIgnoringCase(key.key, name);
        });
        if (isKnown || IsReadElsewhere(section, name)) continue;
        findings.Caution(fmt::format(
            "{} has {}={} in [{}], which nothing reads. If {} is meant, correct the name; else "
            "delete the line",
            HostSettingsFile, name, value, section, known));
    }
}

}  // namespace

void CheckModernMusic(HostFolder& host, std::ostream& out, Findings& findings) {
    std::string_view section;
    for (const ModernKey& key : ModernKeys) {
        const std::string value =
            host.GetINISetting(key.section, key.key, key.off, HostSettingsFile);
        out << fmt::format("{:<17}{}\n", key.label,
                           SwitchesOn(key, value) ? key.whenOn : key.whenOff);
        if (!IsUnderstood(key, value)) {
            findings.Caution(fmt::format(
                "{} in [{}] of {} is \"{}\", which counts as {}. Write {} or {}", key.key,
                key.section, HostSettingsFile, value, key.off, key.on, key.off));
        }
        if (key.section != section) FindUnknownKeys(host, key.section, findings);
        section = key.section;
    }
    const ModernMusic modern = ReadModernMusic(host);
    if (modern.readsAllTags && !modern.writesAllTags) {
        findings.Caution(fmt::format(
            "Read=best in [Tags] of {} without Write=both: ID3v2 is compared, and ID3Write "
            "corrects "
            "version 1 alone. What ID3v2 says differently is found again in each run. Write "
            "Write=both, too, or Read=v1",
            HostSettingsFile));
    }
}

}  // namespace quillon
