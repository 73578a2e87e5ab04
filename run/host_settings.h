#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/host.h"

namespace quillon {

/// What the host knows of its surroundings and the tool's own settings have no key for. It stands
/// in the host's settings file; a host without such keys gives the defaults.

/// [Download] Host: the machine that the stream links of the download table name.
std::string DownloadHost(Host& host);

/// The link of a song in the download table; `middle` distinguishes it from others.
std::string StreamLink(std::string_view downloadHost, std::string_view middle);

/// [Covers]: whether covers are looked for in the album folders, too.
struct CoverTreeScan {
    bool ScanLibrary = false;
    std::string ReservedFolder;  ///< name of album folders to leave out; "" for none
};
CoverTreeScan ReadCoverTreeScan(Host& host);

/// A number of 0 or more; `fallback` where the key is absent or its value is none.
std::int32_t ReadWholeNumber(Host& host, std::string_view section, std::string_view key,
                             std::int32_t fallback);

}  // namespace quillon
