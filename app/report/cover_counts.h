#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "changes/change.h"

namespace quillon {

/// Albums that got an image, another one, or lost theirs, each once: what was and what is in the
/// end counts, however many steps there are between.
class CoverCounts {
  public:
    struct Numbers {
        std::size_t added = 0, changed = 0, removed = 0;
    };

    /// Of the table of albums, as the run goes on.
    void Note(const RowChange& row);

    const Numbers& Current() const { return numbers_; }

  private:
    struct Image {
        std::string before, after;  ///< "" for none
    };
    /// Where the image of such an album counts; null where it is as it was.
    std::size_t* PlaceOf(const Image& image);

    std::unordered_map<std::string, Image> images_;  ///< by the row's key
    Numbers numbers_;
};

}  // namespace quillon
