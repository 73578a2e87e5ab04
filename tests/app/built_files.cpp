#include "tests/app/built_files.h"

namespace quillon::built {

std::string Program() {
    return QUILLON_PROGRAM;
}

std::string OtherWindow() {
    return QUILLON_OTHER_WINDOW;
}

std::string NoWindow() {
    return QUILLON_NO_WINDOW;
}

}  // namespace quillon::built
