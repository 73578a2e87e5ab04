#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A small picture of an image, or why there is none.
struct Thumbnail {
    std::string jpeg;     ///< the bytes of a JPEG file; "" where there is a problem
    std::string problem;  ///< in words, to be said of the image: "is not an image that can be read"
};

/// Makes small pictures of images of the kinds that browsers show: JPEG, PNG, GIF, BMP, WebP.
class Thumbnails {
  public:
    virtual ~Thumbnails() = default;

    /// Failure where none can be made at all, since something is not installed. To be called before
    /// the first is made.
    virtual void Require() = 0;

    /// The image, whole, shrunk until neither side is longer than `side` pixels; a smaller one
    /// keeps its size. What is transparent becomes white. Never fails, whatever the bytes are, and
    /// takes a bounded amount of memory: an image of too many pixels is a problem, too.
    virtual Thumbnail Make(std::string_view image, int side) = 0;
};

}  // namespace quillon
