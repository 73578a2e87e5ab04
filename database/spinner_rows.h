#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

/// Add a row to `Spinner` or `SpinnerArtist` through a table cursor, which then stands on it.
/// Failure: what the database refuses; the cursor then still holds the refused values.
void AddSpinnerRow(RecordSet& spinner, DateTime now, const DownloadSong& song);
void AddSpinnerArtistRow(RecordSet& spinnerArtist, std::string_view artist);

}  // namespace quillon
