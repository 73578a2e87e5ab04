#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/local_host.h"
#include "platform/portable/host_folder.h"
#include "platform/portable/portable_files.h"
#include "platform/portable/removed_files.h"
#include "run/run.h"

namespace quillon {

/// `[Removed] Keep` of `host.ini`: whether music that a run deletes is kept in the host folder. It
/// is unless the setting plainly says no.
struct RemovedMusicSetting {
    std::string text;  ///< as written
    bool keep = true;
    bool understood = true;
};

RemovedMusicSetting ReadRemovedMusicSetting(HostFolder& host);

/// The folder that keeps removed music: HOST/Removed.
std::filesystem::path RemovedMusicFolder(const HostFolder& host);

/// Takes over sound files of the library that are to be deleted; whatever else a run deletes it has
/// made itself. Each file is a line of the log.
PortableFiles::TakeOver KeepRemovedMusic(Run& run, const HostFolder& host, RemovedFiles& removed);

/// Where such a file would go, below the host folder; "" where `keeps` says that it is deleted for
/// good, nothing for other files.
std::optional<std::string> PlaceOfRemovedMusic(const Run& run, LocalHost& local,
                                               RemovedFiles& removed, bool keeps,
                                               std::string_view path);

}  // namespace quillon
