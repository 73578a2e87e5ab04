#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace quillon {

/// What a setting is for, as the settings file explains it.
struct SettingExplanation {
    std::string_view key;
    std::string_view text;
};

/// Settings that belong together.
struct SettingGroup {
    std::string_view title;
    std::span<const SettingExplanation> settings;
};

/// Every setting, explained, in an order that reads well.
std::span<const SettingGroup> SettingGroups();

/// A settings file with every key explained: these values, the default for all others.
std::string SettingsFileText(const std::map<std::string_view, std::string>& values);

}  // namespace quillon
