#pragma once

#include <array>
#include <string_view>

#include "platform/host.h"

namespace quillon {

/// What is done for music, pages and players of today: keys of the host's settings file. A key that
/// is absent, or that says anything else than its word, is off.
struct ModernMusic {
    bool readsAllTags = false;       ///< ID3v2 and APE before version 1; lengths from the audio
    bool writesAllTags = false;      ///< brings ID3v2 in line, too
    bool numbersFromTags = false;    ///< track numbers from tags and names instead of file times
    bool joinsDiscs = false;         ///< CD1, Disc 2 ... below an album folder belong to the album
    bool keepsTrackArtists = false;  ///< albums of several artists: each track has its own
    bool takesFolderImages = false;  ///< images in album folders and in their files are covers
    bool writesLocalLists = false;   ///< an .m3u8 with local paths beside each .m3u
    bool hasModernPicker = false;    ///< the picker's pages in their modern form
};

/// A key that switches one of these on.
struct ModernKey {
    std::string_view section, key;
    std::string_view on, off;  ///< the words of its value; "1" and "0" stand for yes and no
    bool ModernMusic::* member;
    std::string_view label;            ///< for a list of the settings
    std::string_view whenOn, whenOff;  ///< what then happens
};

constexpr std::array<ModernKey, 8> ModernKeys{{
    {"Tags", "Read", "best", "v1", &ModernMusic::readsAllTags, "Tags are read",
     "from ID3v2 and APE, else version 1; lengths from the audio", "from ID3 version 1 alone"},
    {"Tags", "Write", "both", "v1", &ModernMusic::writesAllTags, "Tags are written",
     "in ID3v2 where a file has it, and in version 1", "in ID3 version 1 alone"},
    {"Library", "Numbers", "tags", "times", &ModernMusic::numbersFromTags, "Track numbers",
     "come from tags, then from file names", "come from the times of files"},
    {"Library", "Discs", "1", "0", &ModernMusic::joinsDiscs, "Disc folders",
     "belong to their albums: CD1, Disc 2 ...", "are left out"},
    {"Library", "TrackArtists", "1", "0", &ModernMusic::keepsTrackArtists, "Track artists",
     "come from tags in albums of several artists", "are their folders' names"},
    {"Covers", "FolderImages", "1", "0", &ModernMusic::takesFolderImages, "Album folders",
     "and their files are searched for covers", "are not searched for cover.jpg and the like"},
    {"Playlists", "Local", "1", "0", &ModernMusic::writesLocalLists, "Local playlists",
     "are written: an .m3u8 beside each .m3u", "are not written"},
    {"Picker", "Style", "modern", "classic", &ModernMusic::hasModernPicker, "Picker pages",
     "modern", "classic"},
}};

/// Whether a value of the key switches it on.
bool SwitchesOn(const ModernKey& key, std::string_view value);

/// Whether a value of the key plainly says one or the other.
bool IsUnderstood(const ModernKey& key, std::string_view value);

ModernMusic ReadModernMusic(Host& host);

}  // namespace quillon
