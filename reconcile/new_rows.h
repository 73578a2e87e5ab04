#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/database.h"
#include "platform/date_time.h"

namespace quillon {

/// What differs between the rows that are made for albums of the library.
struct NewAlbum {
    std::string cdjid;
    std::string artist;
    std::string title;
    std::int16_t trackCount = 0;
};

/// What differs between the rows that are made for tracks of the library.
struct NewTrack {
    std::string cdjid;
    std::int64_t minutes = -1;  ///< -1 while the length is not known; so are the seconds
    std::int64_t seconds = -1;
    std::int64_t number = -1;
    std::string title;
    std::optional<std::string> artist;  ///< nothing: the field stays Null
    std::string soundFile;
    std::string album;  ///< its title
};

/// All fields of such a row; those in common have their first values.
std::vector<FieldValue> FieldsOf(DateTime now, const NewAlbum& album);
std::vector<FieldValue> FieldsOf(DateTime now, const NewTrack& track);

}  // namespace quillon
