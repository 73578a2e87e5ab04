#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/host.h"
#include "run/settings.h"

namespace quillon {

/// Where the settings stand in the host's folder.
constexpr std::string_view SettingsSection = "NPFrame";
constexpr std::string_view SettingsFile = "Quillon.ini";

/// How a setting's text becomes its value.
enum class SettingKind {
    Text,           ///< as it stands
    Path,           ///< with single backslashes alone
    Folder,         ///< the same with one at its end
    WebPath,        ///< with forward slashes, one at either end
    StrictBoolean,  ///< True, False or a number; anything else ends the start-up
    StrictInteger,  ///< a 16-bit number; anything else ends the start-up
    Integer,        ///< a 16-bit number; anything else is 0
    Boolean,        ///< 1 or true; anything else is false
};

/// Whether a text that the kind cannot read is a Failure.
bool IsStrict(SettingKind kind);

/// One of the settings: the place in `Settings` that takes its value.
struct SettingDefinition {
    using Member =
        std::variant<std::string Settings::*, std::int16_t Settings::*, bool Settings::*>;

    std::string_view key;
    SettingKind kind;
    std::string_view fallback;  ///< the text that the host gives when the key is absent
    Member member;
};

/// All settings, in the order in which they are read.
std::span<const SettingDefinition> SettingDefinitions();

/// Reads every setting through the host. `PlaylistsOnly` switches `Reconcile` on here, so that
/// every reader of the settings sees the same mode. Failure: a strict setting whose text does not
/// convert; the description names key and text ("Type mismatch: ImagesWide=abc").
Settings ReadSettings(Host& host);

/// Whether the text is "1", or "true" in any letter case.
bool ReadBoolSetting(Host& host, std::string_view key, std::int16_t fallback);

/// Whether the settings file has the key at all.
bool IsInFile(Host& host, std::string_view key);

/// A 16-bit number, or 0 for any other text.
std::int16_t ReadIntSetting(Host& host, std::string_view key, std::int16_t fallback);

/// How one setting was read, for a person who wants to know why a run does what it does.
struct SettingReading {
    std::string_view key;
    std::string text;       ///< as the host gave it
    std::string value;      ///< as the run uses it; "" when it cannot be read
    bool fromFile = false;  ///< false: the key is absent and the default holds
    bool readable = true;   ///< false: a run would not start
    std::string remark;     ///< what is odd about it; "" when nothing is
};

struct SettingsReport {
    std::vector<SettingReading> readings;  ///< in the order of the definitions
    Settings settings;                     ///< unreadable settings keep their default
    bool readable = true;                  ///< whether a run could start with them
};

/// Reads every setting as a run does, but goes on after one that cannot be read.
SettingsReport InspectSettings(Host& host);

}  // namespace quillon
