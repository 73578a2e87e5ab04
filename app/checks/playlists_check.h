#pragma once

#include <string>
#include <vector>

#include "app/checks/findings.h"
#include "app/local_host.h"
#include "run/settings.h"

namespace quillon {

/// Sees a playlist folder that is empty or not there although the database has playlists in it:
/// `stored` are the paths of its playlists. A run would let its brake hold.
void CheckPlaylists(LocalHost& local, const Settings& settings,
                    const std::vector<std::string>& stored, Findings& findings);

}  // namespace quillon
