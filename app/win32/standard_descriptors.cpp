#include "app/standard_descriptors.h"

#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <io.h>

#include "platform/windows/system_headers.h"

namespace quillon {

void PrepareStandardDescriptors() {
    // Descriptors are given out from the lowest free number on.
    int descriptor = _open("NUL", _O_RDWR);
    while (descriptor >= 0 && descriptor <= 2)
        descriptor = _dup(descriptor);
    if (descriptor > 2) _close(descriptor);
    // Lines end here as on every other system, and consoles show the letters of all languages.
    for (std::FILE* const file : {stdin, stdout, stderr})
        _setmode(_fileno(file), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

}  // namespace quillon
