#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "picker/albums.h"

namespace quillon {

/// What pages of both styles ask the host's player for, as links and as forms.

/// The frame that forms name.
constexpr std::string_view FormFrame = "picker";

/// A link's address: "add", "next" or "play" for a track, or with 0 for the whole album.
std::string RequestUrl(std::string_view action, const PickerAlbum& album, std::int64_t track);

/// The address that clears the player's playlist.
std::string ClearUrl();

/// The beginning of a form that the player gets.
std::string PlayerFormStart();

/// A value that a form sends unseen.
std::string HiddenValue(std::string_view name, std::string_view value);

}  // namespace quillon
