#include "reconcile/track_name.h"

#include "platform/basic_text.h"

namespace quillon {

std::string GetTrackName(std::string_view path, bool flatStructure) {
    constexpr std::string_view Dash = " - ", Ending = ".mp3";
    const std::size_t separator = flatStructure ? path.rfind('_') : path.find(Dash);
    if (separator != std::string_view::npos)
        return Replace(path.substr(separator + (flatStructure ? 1 : Dash.size())), Ending, "");
    const std::size_t backslash = path.rfind('\\');
    if (backslash == std::string_view::npos) return std::string(path);
    return Replace(path.substr(backslash + 1), Ending, "");
}

}  // namespace quillon
