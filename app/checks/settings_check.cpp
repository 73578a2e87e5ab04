#include "app/checks/settings_check.h"

#include <algorithm>
#include <fmt/format.h>
#include <ostream>

#include "app/display_text.h"
#include "driver/settings_reader.h"
#include "run/host_settings.h"

namespace quillon {
namespace {

constexpr std::size_t KeyColumns = 22, ValueColumns = 30;

/// At least this wide; a longer text is not cut, since it is what the check is about.
std::string Padded(std::string text, std::size_t columns) {
    const std::size_t taken = DisplayColumns(text);
    if (taken < columns) text.append(columns - taken, ' ');
    return text;
}

std::string Line(const SettingReading& reading) {
    const std::string value = reading.readable ? reading.value : "?";
    std::string line = "  " + Padded(std::string(reading.key), KeyColumns) + ' ' +
                       Padded(value.empty() ? "(empty)" : OneLine(value), ValueColumns) + ' ' +
                       (reading.fromFile ? "file" : "default");
    if (!reading.remark.empty())
        line += fmt::format("   \"{}\": {}", OneLine(reading.text), reading.remark);
    return line;
}

}  // namespace

Settings CheckSettings(Host& host, std::ostream& out, Findings& findings) {
    const SettingsReport report = InspectSettings(host);
    out << fmt::format("\nSettings ({}, section {})\n", SettingsFile, SettingsSection);
    for (const SettingReading& reading : report.readings) {
        out << Line(reading) << '\n';
        if (reading.remark.empty()) continue;
        const std::string finding =
            fmt::format("Setting {} is \"{}\": {}", reading.key, reading.text, reading.remark);
        if (reading.readable) {
            findings.Caution(finding);
        } else {
            findings.Problem(finding);
        }
    }
    return report.settings;
}

void CheckHostSettings(Host& host, std::ostream& out, Findings& findings) {
    const std::string downloadHost = DownloadHost(host);
    const CoverTreeScan covers = ReadCoverTreeScan(host);
    const auto line = [&out](std::string_view key, const std::string& value) {
        out << "  " << Padded(std::string(key), KeyColumns) << ' '
            << (value.empty() ? "(empty)" : OneLine(value)) << '\n';
    };
    out << fmt::format("\nHost settings ({})\n", HostSettingsFile);
    line("Download Host", downloadHost);
    line("Covers ScanLibrary", covers.ScanLibrary ? "True" : "False");
    line("Covers ReservedFolder", covers.ReservedFolder);
    if (downloadHost.find('-') != std::string::npos) {
        findings.Caution(fmt::format(
            "Host {} of [Download] has a hyphen: a piece of it becomes the genre of songs whose "
            "artist is in the download table",
            downloadHost));
    }
}

void CheckPlugin(Host& host, std::ostream& out, Findings& findings) {
    const std::vector<std::string> plugins = host.GetPlugins();
    const bool enabled = std::ranges::find(plugins, "Quillon") != plugins.end();
    out << fmt::format("Plug-in Quillon  {}\n", enabled ? "enabled" : "not enabled");
    if (!enabled)
        findings.Problem("The plug-in is not enabled: host.ini needs Quillon=1 in [Plugins]");
}

}  // namespace quillon
