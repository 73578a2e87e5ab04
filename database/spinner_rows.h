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

/// Sets all fields of a row of `Spinner` that a table cursor has begun.
void FillSpinnerRow(RecordSet& spinner, DateTime now, const DownloadSong& song);

/// Adds a row to `SpinnerArtist` through a table cursor, which then stands on it. Failure: what the
/// database refuses; the cursor then still holds the refused values.
void AddSpinnerArtistRow(RecordSet& spinnerArtist, std::string_view artist);

}  // namespace quillon
