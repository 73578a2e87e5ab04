#include "images/gd_thumbnails.h"

#include <algorithm>
#include <cstdint>
#include <gd.h>
#include <limits>
#include <memory>
#include <optional>
#include <png.h>
#include <vector>

#include "images/gd_library.h"
#include "images/image_header.h"

namespace quillon {
namespace {

constexpr int JpegQuality = 82;
constexpr const char* Unreadable = "is not an image that can be read";
constexpr const char* TooLarge = "has too many pixels";

struct Destroy {
    void operator()(gdImage* image) const { TheGdLibrary().Destroy(image); }
    void operator()(void* bytes) const { TheGdLibrary().Free(bytes); }
};
using Image = std::unique_ptr<gdImage, Destroy>;

/// A PNG image, on white. GD would do it, too, but then whatever is odd about a file, and a lot of
/// programs write odd ones, is printed among the program's own messages.
Image UnpackPng(std::string_view bytes) {
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&file, bytes.data(), bytes.size()) == 0) return nullptr;
    file.format = PNG_FORMAT_RGB;
    constexpr png_color White{255, 255, 255};
    std::vector<png_byte> pixels(std::size_t{PNG_IMAGE_SIZE(file)});
    const bool isRead = png_image_finish_read(&file, &White, pixels.data(), 0, nullptr) != 0;
    png_image_free(&file);
    if (!isRead) return nullptr;
    const int width = static_cast<int>(file.width), height = static_cast<int>(file.height);
    Image image(TheGdLibrary().CreateTrueColor(width, height));
    if (!image) return nullptr;
    const png_byte* pixel = pixels.data();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, pixel += 3)
            image->tpixels[y][x] = gdTrueColor(pixel[0], pixel[1], pixel[2]);
    return image;
}

/// The image unpacked; none where it is damaged.
Image Unpack(std::string_view bytes, ImageKind kind) {
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return nullptr;
    const int size = static_cast<int>(bytes.size());
    void* const data = const_cast<char*>(bytes.data());  // only read from
    const GdLibrary& gd = TheGdLibrary();
    switch (kind) {
        case ImageKind::Jpeg:
            return Image(gd.FromJpeg(size, data));
        case ImageKind::Png:
            return UnpackPng(bytes);
        case ImageKind::Gif:
            return Image(gd.FromGif(size, data));
        case ImageKind::Bmp:
            return Image(gd.FromBmp(size, data));
        case ImageKind::WebP:
            return Image(gd.FromWebP(size, data));
    }
    return nullptr;
}

/// A length shrunk as the longer one is to `side`.
int Shrunk(int length, int longer, int side) {
    return std::max(1, static_cast<int>(std::int64_t{length} * side / longer));
}

/// The image on white, no longer than `side` either way.
Image Reduced(const Image& image, int side) {
    const int width = gdImageSX(image.get()), height = gdImageSY(image.get());
    const int longer = std::max(width, height), wanted = std::min(longer, side);
    const int newWidth = Shrunk(width, longer, wanted), newHeight = Shrunk(height, longer, wanted);
    const GdLibrary& gd = TheGdLibrary();
    Image reduced(gd.CreateTrueColor(newWidth, newHeight));
    if (!reduced) return nullptr;
    gd.FillRectangle(reduced.get(), 0, 0, newWidth - 1, newHeight - 1, gdTrueColor(255, 255, 255));
    gd.CopyResampled(reduced.get(), image.get(), 0, 0, 0, 0, newWidth, newHeight, width, height);
    return reduced;
}

}  // namespace

void GdThumbnails::Require() {
    TheGdLibrary();
}

Thumbnail GdThumbnails::Make(std::string_view image, int side) {
    const std::optional<ImageHeader> header = ReadImageHeader(image);
    if (!header) return {.jpeg = "", .problem = Unreadable};
    // Each side alone may be beyond what a product can hold.
    if (header->width > MostPixels || header->height > MostPixels ||
        header->width * header->height > MostPixels) {
        return {.jpeg = "", .problem = TooLarge};
    }
    const Image whole = Unpack(image, header->kind);
    const Image reduced = whole ? Reduced(whole, side) : nullptr;
    int size = 0;
    const std::unique_ptr<void, Destroy> jpeg(
        reduced ? TheGdLibrary().ToJpeg(reduced.get(), &size, JpegQuality) : nullptr);
    if (!jpeg) return {.jpeg = "", .problem = Unreadable};
    return {
        .jpeg = std::string(static_cast<const char*>(jpeg.get()), static_cast<std::size_t>(size)),
        .problem = ""};
}

}  // namespace quillon
