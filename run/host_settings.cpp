#include "run/host_settings.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "platform/basic_text.h"

namespace quillon {

std::string DownloadHost(Host& host) {
    constexpr std::string_view ThisMachine = "localhost";
    std::string name = host.GetINISetting("Download", "Host", ThisMachine, HostSettingsFile);
    if (name.empty()) name = ThisMachine;
    return name;
}

std::string StreamLink(std::string_view downloadHost, std::string_view middle) {
    std::string link = "rtsp://";
    link.append(downloadHost).append("/spinlinks/000-").append(middle).append("-000.rm");
    return link;
}

CoverTreeScan ReadCoverTreeScan(Host& host) {
    const std::string scan = host.GetINISetting("Covers", "ScanLibrary", "0", HostSettingsFile);
    return {IsSwitchedOn(scan),
            host.GetINISetting("Covers", "ReservedFolder", "", HostSettingsFile)};
}

std::int32_t ReadWholeNumber(Host& host, std::string_view section, std::string_view key,
                             std::int32_t fallback) {
    const std::string text =
        host.GetINISetting(section, key, std::to_string(fallback), HostSettingsFile);
    const std::optional<double> number = ToNumber(text);
    if (!number || *number < 0) return fallback;
    constexpr double Most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(*number, Most));
}

}  // namespace quillon
