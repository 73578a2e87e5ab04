#include "app/checks/safety_check.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <ostream>
#include <string_view>

#include "driver/nearest_name.h"
#include "platform/basic_text.h"
#include "run/removals.h"

namespace quillon {
namespace {

constexpr std::string_view Section = "Safety";
constexpr std::string_view BrakeKey = "Brake";

struct LimitKey {
    std::string_view name;
    std::int32_t SafetyLimits::* member;
};

constexpr std::array LimitKeys{
    LimitKey{"MaxRemovedTracks", &SafetyLimits::MaxRemovedTracks},
    LimitKey{"MaxRemovedPercent", &SafetyLimits::MaxRemovedPercent},
    LimitKey{"MaxRemovedFiles", &SafetyLimits::MaxRemovedFiles},
    LimitKey{"MaxRemovedPlaylists", &SafetyLimits::MaxRemovedPlaylists},
};

void FindOddLimit(const LimitKey& key, std::string_view text, const SafetyLimits& limits,
                  Findings& findings) {
    const std::int32_t value = limits.*key.member;
    if (ToNumber(text) == value) return;
    findings.Caution(
        fmt::format("{} in [{}] of {} is \"{}\", which is not a whole number of 0 or more and "
                    "counts as {}. Correct it, or delete the line to get {}",
                    key.name, Section, HostSettingsFile, text, value, SafetyLimits().*key.member));
}

void FindOddBrake(std::string_view text, bool isOn, Findings& findings) {
    if (!isOn) {
        findings.Caution(
            fmt::format("The brake on loss is off ({}={} in [{}] of {}): if a drive is not "
                        "mounted, a run removes everything that was on it, including play counts, "
                        "ratings and playlists. Write 1; "
                        "'quillon run --allow-removals' switches it off for one run",
                        BrakeKey, text, Section, HostSettingsFile));
    } else if (!IsSwitchedOn(text)) {
        findings.Caution(
            fmt::format("{} in [{}] of {} is \"{}\", which is neither yes nor no; the brake is on. "
                        "Write 1 or 0",
                        BrakeKey, Section, HostSettingsFile, text));
    }
}

void FindUnknownKey(std::string_view key, std::string_view value, Findings& findings) {
    std::array<std::string_view, LimitKeys.size() + 1> names{BrakeKey};
    std::ranges::transform(LimitKeys, names.begin() + 1, &LimitKey::name);
    const std::string_view meant = NearestName(key, names);
    findings.Caution(fmt::format(
        "{} has {}={} in [{}], which nothing reads. {}", HostSettingsFile, key, value, Section,
        meant.empty() ? "Delete the line"
                      : fmt::format("If {} is meant, correct the name", meant)));
}

}  // namespace

void CheckSafety(HostFolder& host, std::ostream& out, Findings& findings) {
    const SafetyLimits limits = ReadSafetyLimits(host);
    if (limits.Brake) {
        out << fmt::format(
            "Brake            on: more than {} tracks and {} % of all, {} music files or {} "
            "playlists\n",
            limits.MaxRemovedTracks, limits.MaxRemovedPercent, limits.MaxRemovedFiles,
            limits.MaxRemovedPlaylists);
    } else {
        out << "Brake            off\n";
    }
    for (const auto& [key, value] : host.Entries(Section, HostSettingsFile)) {
        const auto limit = std::ranges::find_if(LimitKeys, [&key = key](const LimitKey& known) {
            return EqualIgnoringCase(key, known.name);
        });
        if (limit != LimitKeys.end()) {
            FindOddLimit(*limit, value, limits, findings);
        } else if (EqualIgnoringCase(key, BrakeKey)) {
            FindOddBrake(value, limits.Brake, findings);
        } else {
            FindUnknownKey(key, value, findings);
        }
    }
}

}  // namespace quillon
