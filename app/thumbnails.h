#pragma once

#include <memory>

#include "platform/thumbnails.h"

namespace quillon {

/// What makes small pictures here, or says why nothing does.
std::unique_ptr<Thumbnails> MakeThumbnails();

}  // namespace quillon
