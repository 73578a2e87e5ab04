#include "app/thumbnails.h"

#include "images/gd_thumbnails.h"

namespace quillon {

std::unique_ptr<Thumbnails> MakeThumbnails() {
    return std::make_unique<GdThumbnails>();
}

}  // namespace quillon
