#pragma once

#include <gd.h>

namespace quillon {

/// What is used of the GD library. It is loaded only when a cover is to become small: with all that
/// it needs for other kinds of images it would double the time in which the program starts.
struct GdLibrary {
    decltype(&::gdImageCreateTrueColor) CreateTrueColor;
    decltype(&::gdImageCreateFromJpegPtr) FromJpeg;
    decltype(&::gdImageCreateFromGifPtr) FromGif;
    decltype(&::gdImageCreateFromBmpPtr) FromBmp;
    decltype(&::gdImageCreateFromWebpPtr) FromWebP;
    decltype(&::gdImageFilledRectangle) FillRectangle;
    decltype(&::gdImageCopyResampled) CopyResampled;
    decltype(&::gdImageJpegPtr) ToJpeg;
    decltype(&::gdImageDestroy) Destroy;
    decltype(&::gdFree) Free;
};

/// The library, loaded when it is first asked for; it stays. Failure: it is not installed.
const GdLibrary& TheGdLibrary();

}  // namespace quillon
