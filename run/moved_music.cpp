#include "run/moved_music.h"

#include "run/host_settings.h"

namespace quillon {

MovedMusicSettings ReadMovedMusicSettings(Host& host) {
    return {.FollowMovedFiles = IsSwitchedOn(
                host.GetINISetting("Library", "FollowMovedFiles", "0", HostSettingsFile)),
            .KeepDays = ReadWholeNumber(host, "Missing", "KeepDays", 0)};
}

}  // namespace quillon
