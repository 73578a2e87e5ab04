#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The settings file of the host itself, beside that of the tool.
constexpr std::string_view HostSettingsFile = "host.ini";

/// Whether a value in that file says yes: "yes", "on", "true" or a number other than 0.
bool IsSwitchedOn(std::string_view value);

/// Whether it plainly says no: "no", "off", "false" or the number 0.
bool IsSwitchedOff(std::string_view value);

/// The home-automation host that the tool runs beside: it keeps the settings and the log.
class Host {
  public:
    virtual ~Host() = default;

    /// The value's text, or `fallback` when the key (or section, or file) is absent.
    virtual std::string GetINISetting(std::string_view section, std::string_view key,
                                      std::string_view fallback, std::string_view file) = 0;

    /// The lines of a section as they stand, without comments and empty ones: of all sections of
    /// that name, and whether they say anything or not. For finding out what was meant.
    virtual std::vector<std::string> GetINILines(std::string_view section,
                                                 std::string_view file) = 0;

    /// Appends a record to the host's log.
    virtual void WriteLog(std::string_view source, std::string_view message) = 0;

    /// Names of the plug-ins that the host has enabled.
    virtual std::vector<std::string> GetPlugins() = 0;

    /// The host's folder as a Windows path, without a trailing backslash.
    virtual std::string GetAppPath() = 0;
};

}  // namespace quillon
