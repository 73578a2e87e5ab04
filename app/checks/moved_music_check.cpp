#include "app/checks/moved_music_check.h"

#include <fmt/format.h>
#include <ostream>
#include <string_view>

#include "platform/basic_text.h"
#include "run/moved_music.h"

namespace quillon {
namespace {

constexpr std::string_view FollowSection = "Library", FollowKey = "FollowMovedFiles",
                           KeepSection = "Missing", KeepKey = "KeepDays";

void CheckFollow(HostFolder& host, Findings& findings) {
    for (const auto& [key, value] : host.Entries(FollowSection, HostSettingsFile)) {
        if (EqualIgnoringCase(key, FollowKey) && !IsSwitchedOn(value) && !IsSwitchedOff(value)) {
            findings.Caution(fmt::format(
                "{} in [{}] of {} is \"{}\", which is neither yes nor no; moved files are not "
                "followed. Write 1 or 0",
                FollowKey, FollowSection, HostSettingsFile, value));
        }
    }
}

void CheckKeep(HostFolder& host, const MovedMusicSettings& settings, Findings& findings) {
    for (const auto& [key, value] : host.Entries(KeepSection, HostSettingsFile)) {
        if (!EqualIgnoringCase(key, KeepKey)) {
            findings.Caution(fmt::format(
                "{} has {}={} in [{}], which nothing reads. If {} is meant, correct the name; else "
                "delete the line",
                HostSettingsFile, key, value, KeepSection, KeepKey));
        } else if (ToNumber(value) != settings.KeepDays) {
            findings.Caution(fmt::format(
                "{} in [{}] of {} is \"{}\", which is not a whole number of 0 or more and counts "
                "as {}. Correct it",
                KeepKey, KeepSection, HostSettingsFile, value, settings.KeepDays));
        }
    }
}

}  // namespace

void CheckMovedMusic(HostFolder& host, std::ostream& out, Findings& findings) {
    const MovedMusicSettings settings = ReadMovedMusicSettings(host);
    out << fmt::format("Moved files      {}\n",
                       settings.FollowMovedFiles
                           ? "followed: rows go with the sound"
                           : "not followed: rows go when their files have other names");
    if (settings.KeepDays > 0) {
        out << fmt::format("Missing files    their rows are kept for {} day{}\n", settings.KeepDays,
                           settings.KeepDays == 1 ? "" : "s");
    } else {
        out << "Missing files    their rows are removed at once\n";
    }
    CheckFollow(host, findings);
    CheckKeep(host, settings, findings);
}

}  // namespace quillon
