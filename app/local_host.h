#pragma once

#include <filesystem>
#include <memory>

#include "platform/portable/host_folder.h"
#include "platform/portable/jet_database.h"
#include "platform/portable/path_resolver.h"
#include "platform/portable/portable_files.h"
#include "platform/portable/system_clock.h"
#include "platform/thumbnails.h"

namespace quillon {

/// A host folder on this system with everything that works through it.
class LocalHost {
  public:
    /// `note` gets a line for each entry of a folder that cannot be shown and each table that is
    /// damaged and not needed. CommandError for a folder that is no host folder, Failure for a host
    /// folder that cannot be used.
    LocalHost(const std::filesystem::path& folder, const NoteSink& note);

    /// The same in the folder of the home-automation host itself, which keeps settings elsewhere.
    LocalHost(Host& outside, const NoteSink& note);

    SystemClock clock;
    HostFolder host;
    PathResolver resolver;
    PortableFiles files;
    JetDatabaseProvider databases;
    std::unique_ptr<Thumbnails> thumbnails;

  private:
    struct Checked {
        std::filesystem::path folder;
    };
    LocalHost(const Checked& checked, const NoteSink& note);
};

}  // namespace quillon
