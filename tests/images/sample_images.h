#pragma once

#include <cstdint>
#include <string>

/// Small images of one colour, made here byte by byte.
namespace quillon::samples {

/// A number of some bytes, the highest first.
std::string Big(std::uint64_t number, int bytes);
/// The lowest first.
std::string Little(std::uint64_t number, int bytes);

/// Red, green and blue of all pixels.
struct Colour {
    int red = 0, green = 0, blue = 0;
};

std::string Png(int width, int height, Colour colour);
std::string Bmp(int width, int height, Colour colour);
/// One white pixel each, whatever size the headers claim.
std::string Gif(int width, int height);
std::string WebP();
/// The picker's own picture of a record, 200 x 200.
std::string Jpeg();

}  // namespace quillon::samples
