#include "images/gd_library.h"

#include <cstdarg>
#include <dlfcn.h>
#include <string>

#include "platform/failure.h"

namespace quillon {
namespace {

constexpr const char* LibraryName = "libgd.so.3";

template <typename Function>
void Find(void* library, const char* name, Function& function) {
    void* const found = dlsym(library, name);
    if (found == nullptr)
        throw Failure(FailureNumber::ObjectRequired, std::string(LibraryName) + " has no " + name);
    function = reinterpret_cast<Function>(found);
}

/// What is wrong with an image is told to the caller and to nobody else.
void SayNothing(int, const char*, va_list) {}

GdLibrary Load() {
    void* const library = dlopen(LibraryName, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw Failure(FailureNumber::ObjectRequired,
                      std::string(LibraryName) + ", which makes covers small, is not installed");
    }
    GdLibrary gd{};
    Find(library, "gdImageCreateTrueColor", gd.CreateTrueColor);
    Find(library, "gdImageCreateFromJpegPtr", gd.FromJpeg);
    Find(library, "gdImageCreateFromGifPtr", gd.FromGif);
    Find(library, "gdImageCreateFromBmpPtr", gd.FromBmp);
    Find(library, "gdImageCreateFromWebpPtr", gd.FromWebP);
    Find(library, "gdImageFilledRectangle", gd.FillRectangle);
    Find(library, "gdImageCopyResampled", gd.CopyResampled);
    Find(library, "gdImageJpegPtr", gd.ToJpeg);
    Find(library, "gdImageDestroy", gd.Destroy);
    Find(library, "gdFree", gd.Free);
    decltype(&::gdSetErrorMethod) setErrorMethod = nullptr;
    Find(library, "gdSetErrorMethod", setErrorMethod);
    setErrorMethod(SayNothing);
    return gd;
}

}  // namespace

const GdLibrary& TheGdLibrary() {
    static const GdLibrary library = Load();
    return library;
}

}  // namespace quillon
