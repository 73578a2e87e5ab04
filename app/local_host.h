#pragma once

#include <filesystem>

#include "images/gd_thumbnails.h"
#include "platform/portable/host_folder.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "platform/portable/system_clock.h"

namespace quillon {

/// A host folder on this system with everything that works through it.
class LocalHost {
  public:
    /// `note` gets a line for each entry of a folder that cannot be shown and each table that is
    /// damaged and not needed. CommandError for a folder that is no host folder, Failure for a host
    /// folder that cannot be used.
    LocalHost(const std::filesystem::path& folder, const NoteSink& note);

    SystemClock clock;
    HostFolder host;
    PathResolver resolver;
    PortableFiles files;
    JetDatabaseProvider databases;
    GdThumbnails thumbnails;
};

}  // namespace quillon
