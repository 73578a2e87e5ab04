#include "run/modern_music.h"

#include "platform/basic_text.h"

namespace quillon {

bool SwitchesOn(const ModernKey& key, std::string_view value) {
    return key.on == "1" ? IsSwitchedOn(value) : EqualIgnoringCase(value, key.on);
}

bool IsUnderstood(const ModernKey& key, std::string_view value) {
    if (value.empty() || SwitchesOn(key, value)) return true;
    return key.on == "1" ? IsSwitchedOff(value) : EqualIgnoringCase(value, key.off);
}

ModernMusic ReadModernMusic(Host& host) {
    ModernMusic modern;
    for (const ModernKey& key : ModernKeys)
        modern.*key.member =
            SwitchesOn(key, host.GetINISetting(key.section, key.key, key.off, HostSettingsFile));
    return modern;
}

}  // namespace quillon
