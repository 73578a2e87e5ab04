#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/date_time.h"

namespace quillon {

/// A song as it comes into the download table.
struct DownloadSong {
    std::string link;
    std::string artist;
    std::string album;
    std::string song;
    std::int64_t length = 0;  ///< seconds; 0 while it is not known
    std::string genre;
};

/// All fields of its row in `Spinner`.
std::vector<FieldValue> FieldsOf(DateTime now, const DownloadSong& song);

/// All fields of an artist's row in `SpinnerArtist`.
std::vector<FieldValue> FieldsOfSpinnerArtist(std::string_view artist);

}  // namespace quillon
