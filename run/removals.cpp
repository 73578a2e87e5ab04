#include "run/removals.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>

#include "platform/basic_text.h"
#include "platform/host.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

std::int32_t ReadLimit(Host& host, std::string_view key, std::int32_t fallback) {
    const std::string text =
        host.GetINISetting("Safety", key, std::to_string(fallback), HostSettingsFile);
    const std::optional<double> number = ToNumber(text);
    if (!number || *number < 0) return fallback;
    constexpr double Most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(*number, Most));
}

std::string Counted(std::size_t count, std::string_view word) {
    return std::to_string(count) + ' ' + std::string(word) + (count == 1 ? "" : "s");
}

std::string_view WordFor(Removable kind) {
    switch (kind) {
        case Removable::Tracks:
            return "track";
        case Removable::MusicFiles:
            return "music file";
        case Removable::Playlists:
            break;
    }
    return "playlist";
}

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

SafetyLimits ReadSafetyLimits(Host& host) {
    const SafetyLimits standard;
    const auto limit = [&host](std::string_view key, std::int32_t fallback) {
        return ReadLimit(host, key, fallback);
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
    LogError(run, LogSource,
             "Nothing is removed: " + objection + ". It would be " + FirstOf(planned.names) +
                 ". If that is meant, run once with --allow-removals; else see to the drives and "
                 "folders and run again");
    return false;
}

/// Why these may not go, "" when they may.
std::string Removals::Objection(const PlannedRemoval& planned) const {
    const std::size_t count =
        allowed_.at(static_cast<std::size_t>(planned.kind)) + planned.names.size();
    std::string text = Counted(count, WordFor(planned.kind));
    const auto passes = [count](std::int32_t limit) {
        return count > static_cast<std::size_t>(limit);
    };
    const auto beyond = [](std::string_view key, std::int32_t limit) {
        return std::string(key) + '=' + std::to_string(limit);
    };
    if (!planned.doubt.empty()) return text + " would go, and " + planned.doubt;
    switch (planned.kind) {
        case Removable::Tracks: {
            const bool passesShare =
                count * 100 > planned.outOf * static_cast<std::size_t>(limits.MaxRemovedPercent);
            if (!passes(limits.MaxRemovedTracks) || !passesShare) return "";
            return text + " of " + std::to_string(planned.outOf) + " would go, beyond " +
                   beyond("MaxRemovedTracks", limits.MaxRemovedTracks) + " and " +
                   beyond("MaxRemovedPercent", limits.MaxRemovedPercent);
        }
        case Removable::MusicFiles:
            if (!passes(limits.MaxRemovedFiles)) return "";
            return text + " would go, beyond " + beyond("MaxRemovedFiles", limits.MaxRemovedFiles);
        case Removable::Playlists:
            break;
    }
    if (!passes(limits.MaxRemovedPlaylists)) return "";
    return text + " would go, beyond " + beyond("MaxRemovedPlaylists", limits.MaxRemovedPlaylists);
}

void Removals::Note(Removable kind, const std::string& name) {
    Gone& gone = gone_.at(static_cast<std::size_t>(kind));
    ++gone.count;
    if (gone.names.size() < MostNames) gone.names.push_back(name);
}

}  // namespace quillon
