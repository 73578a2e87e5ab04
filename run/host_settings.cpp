#include "run/host_settings.h"

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

}  // namespace quillon
