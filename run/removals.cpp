#include "run/removals.h"

#include <algorithm>
#include <string_view>

#include "platform/basic_text.h"
#include "platform/host.h"
#include "run/host_settings.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

/// The first names, and how many more there are.
std::string FirstOf(const std::vector<std::string>& names) {
    std::string text;
    const std::size_t shown = std::min(names.size(), Removals::MostNames);
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? "" : ", ") + names[i];
    if (names.size() > shown) text += " and " + std::to_string(names.size() - shown) + " more";
    return text;
}

}  // namespace

std::string NumberOf(std::size_t count, Removable kind) {
    std::string word = "playlist";
    if (kind == Removable::Tracks) word = "track";
    if (kind == Removable::MusicFiles) word = "music file";
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

SafetyLimits ReadSafetyLimits(Host& host) {
    const SafetyLimits standard;
    const auto limit = [&host](std::string_view key, std::int32_t fallback) {
        return ReadWholeNumber(host, "Safety", key, fallback);
    };
    return {.Brake = !IsSwitchedOff(host.GetINISetting("Safety", "Brake", "1", HostSettingsFile)),
            .MaxRemovedTracks = limit("MaxRemovedTracks", standard.MaxRemovedTracks),
            .MaxRemovedPercent = limit("MaxRemovedPercent", standard.MaxRemovedPercent),
            .MaxRemovedFiles = limit("MaxRemovedFiles", standard.MaxRemovedFiles),
            .MaxRemovedPlaylists = limit("MaxRemovedPlaylists", standard.MaxRemovedPlaylists)};
}

bool Removals::Allow(Run& run, const PlannedRemoval& planned) {
    std::size_t& allowed = allowed_.at(static_cast<std::size_t>(planned.kind));
    if (!limits.Brake || allAllowed || planned.names.empty()) {
        allowed += planned.names.size();
        return true;
    }
    if (braked_) return false;
    const std::string objection = Objection(planned);
    if (objection.empty()) {
        allowed += planned.names.size();
        return true;
    }
    braked_ = true;
    const bool isFirst =
        std::ranges::all_of(allowed_, [](std::size_t earlier) { return earlier == 0; });
    LogError(run, LogSource,
             std::string(isFirst ? "Nothing" : "Nothing more") + " is removed: " + objection +
                 ". It would be " + FirstOf(planned.names) +
                 ". If that is meant, 'quillon run --allow-removals' lets it through once; else "
                 "see to the drives and folders and run again");
    return false;
}

/// Why these may not go, "" when they may.
std::string Removals::Objection(const PlannedRemoval& planned) const {
    const std::size_t earlier = allowed_.at(static_cast<std::size_t>(planned.kind));
    const std::size_t count = earlier + planned.names.size();
    // Those that this run has removed already are no longer there to be counted.
    const std::size_t outOf = earlier + planned.outOf;
    std::string text = NumberOf(count, planned.kind);
    if (planned.kind == Removable::Tracks) text += " of " + std::to_string(outOf);
    text += " would go";
    if (earlier > 0) text += " in all, " + std::to_string(earlier) + " of them have gone";
    text += ", ";
    if (!planned.doubt.empty()) return text + "and " + planned.doubt;
    const std::string limit = LimitPassed(planned.kind, count, outOf);
    return limit.empty() ? "" : text + "beyond " + limit + " in " + std::string(HostSettingsFile);
}

/// The limits that so many would pass, "" where they do not.
std::string Removals::LimitPassed(Removable kind, std::size_t count, std::size_t outOf) const {
    const auto passed = [count](std::string_view key, std::int32_t limit) {
        return count > static_cast<std::size_t>(limit)
                   ? std::string(key) + '=' + std::to_string(limit)
                   : "";
    };
    switch (kind) {
        case Removable::MusicFiles:
            return passed("MaxRemovedFiles", limits.MaxRemovedFiles);
        case Removable::Playlists:
            return passed("MaxRemovedPlaylists", limits.MaxRemovedPlaylists);
        case Removable::Tracks:
            break;
    }
    const auto percent = static_cast<std::size_t>(limits.MaxRemovedPercent);
    const std::string tracks = passed("MaxRemovedTracks", limits.MaxRemovedTracks);
    if (tracks.empty() || count * 100 <= outOf * percent) return "";
    return tracks + " and MaxRemovedPercent=" + std::to_string(percent);
}

void Removals::Note(Removable kind, const std::string& name) {
    Gone& gone = gone_.at(static_cast<std::size_t>(kind));
    ++gone.count;
    if (gone.names.size() < MostNames) gone.names.push_back(name);
    if (kind == Removable::MusicFiles) removedFiles_.insert(LowerCase(name));
}

bool Removals::HasRemovedFile(std::string_view path) const {
    return removedFiles_.contains(LowerCase(path));
}

}  // namespace quillon
