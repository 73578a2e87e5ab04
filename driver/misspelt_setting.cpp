#include "driver/misspelt_setting.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "driver/modes.h"
#include "driver/nearest_name.h"
#include "driver/settings_reader.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

/// The one setting whose default does more than most people want.
constexpr std::string_view DangerousKey = "ID3Reconcile";

bool WouldVerifyTags(const Settings& settings) {
    const Mode* const mode = SelectMode(settings);
    return mode != nullptr && mode->setting == &Settings::Reconcile && !settings.PlaylistsOnly &&
           !settings.LibraryRoot.empty() && settings.ID3Reconcile;
}

/// The line that was probably meant to set the key.
std::string LineMeantFor(Host& host, std::string_view wanted) {
    std::vector<std::string_view> keys;
    for (const SettingDefinition& definition : SettingDefinitions())
        keys.push_back(definition.key);
    for (const std::string& line : host.GetINILines(SettingsSection, SettingsFile)) {
        const std::string key(Trim(std::string_view(line).substr(0, line.find('='))));
        if (NearestName(key, keys) == wanted) return line;
    }
    return "";
}

}  // namespace

std::string ObjectionToMisspeltSetting(Host& host, const Settings& settings) {
    if (!WouldVerifyTags(settings) || IsInFile(host, DangerousKey)) return "";
    const std::string line = LineMeantFor(host, DangerousKey);
    if (line.empty()) return "";
    return std::string(SettingsFile) + " has the line " + line + ", which nothing reads. If " +
           std::string(DangerousKey) +
           " is meant, correct it: without that setting a run renames and removes files by their "
           "tags. If not, write " +
           std::string(DangerousKey) + "=0 or =1 as well";
}

}  // namespace quillon
