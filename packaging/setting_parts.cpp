#include <algorithm>
#include <fmt/format.h>

#include "app/settings_file.h"
#include "driver/settings_reader.h"
#include "packaging/roff.h"
#include "run/removals.h"

namespace quillon {
namespace {

std::string_view TypeOf(SettingKind kind) {
    switch (kind) {
        case SettingKind::Text:
            return "text";
        case SettingKind::Path:
            return "path";
        case SettingKind::Folder:
            return "folder";
        case SettingKind::WebPath:
            return "web path";
        case SettingKind::StrictBoolean:
            return "strict yes or no";
        case SettingKind::StrictInteger:
            return "strict number";
        case SettingKind::Integer:
            return "number";
        case SettingKind::Boolean:
            return "yes or no";
    }
    return "";
}

const SettingDefinition& DefinitionOf(std::string_view key) {
    return *std::ranges::find(SettingDefinitions(), key, &SettingDefinition::key);
}

std::string SettingText(const SettingExplanation& setting) {
    const SettingDefinition& definition = DefinitionOf(setting.key);
    const std::string fallback =
        definition.fallback.empty() ? "empty" : "\\fB" + RoffText(definition.fallback) + "\\fR";
    return fmt::format(".TP\n\\fB{}\\fR (\\fI{}\\fR, default: {})\n{}", RoffText(setting.key),
                       TypeOf(definition.kind), fallback, RoffParagraph(setting.text));
}

}  // namespace

std::map<std::string, std::string> SettingParts() {
    std::map<std::string, std::string> parts;
    for (const SettingGroup& group : SettingGroups()) {
        parts["SETTINGS"] += fmt::format(".SS {}\n", RoffText(group.title));
        for (const SettingExplanation& setting : group.settings)
            parts["SETTINGS"] += SettingText(setting);
    }
    const SafetyLimits limits;
    parts["Brake"] = limits.Brake ? "1" : "0";
    parts["MaxRemovedTracks"] = std::to_string(limits.MaxRemovedTracks);
    parts["MaxRemovedPercent"] = std::to_string(limits.MaxRemovedPercent);
    parts["MaxRemovedFiles"] = std::to_string(limits.MaxRemovedFiles);
    parts["MaxRemovedPlaylists"] = std::to_string(limits.MaxRemovedPlaylists);
    return parts;
}

}  // namespace quillon
