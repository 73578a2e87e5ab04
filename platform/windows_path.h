#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/windows_name.h"

namespace quillon {

/// A full Windows path, taken apart and found to be one that Windows can hold.
struct WindowsPath {
    std::string root;  ///< `D:` or `\\server\share`, as written
    std::string rest;  ///< components with "/" between, none before or behind; empty for the root

    /// `D:\`, `D:\Music\x.mp3`, `\\server\share\x.mp3`: the one spelling with single backslashes.
    std::string Text() const;
    /// The path of an entry inside this folder.
    std::string Child(std::string_view name) const;
};

/// Slashes count as backslashes, repeated ones as one, those at the end not at all. Failure:
/// PathNotFound for a path that does not begin with a drive or a share, BadFileName for one with a
/// component that Windows cannot hold.
WindowsPath ParseWindowsPath(std::string_view path);

/// The folder that a path lies in, without the backslash at its end: `D:\Music` of
/// `D:\Music\x.mp3`, `D:` of `D:\x.mp3`; "" where there is none. A view of the path.
std::string_view ParentFolder(std::string_view path);

/// The root that a drive table's line names: "D", "D:", "D:\" or `\\server\share`; nothing when it
/// is anything else.
std::optional<std::string> ParseRoot(std::string_view text);

}  // namespace quillon
