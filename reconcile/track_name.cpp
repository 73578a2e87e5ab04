#include "reconcile/track_name.h"

#include <optional>

#include "id3/file_names.h"
#include "platform/basic_text.h"

namespace quillon {

std::string GetTrackName(std::string_view givenPath, bool flatStructure) {
    // A file that waits for its new name is still the song that it was.
    const std::optional<std::string> before = NameBeforeRenaming(givenPath);
    const std::string_view path = before ? std::string_view(*before) : givenPath;
    constexpr std::string_view Dash = " - ", Ending = ".mp3";
    const std::size_t separator = flatStructure ? path.rfind('_') : path.find(Dash);
    if (separator != std::string_view::npos)
        return Replace(path.substr(separator + (flatStructure ? 1 : Dash.size())), Ending, "");
    const std::size_t backslash = path.rfind('\\');
    if (backslash == std::string_view::npos) return std::string(path);
    return Replace(path.substr(backslash + 1), Ending, "");
}

}  // namespace quillon
