#include "jet/version.h"

namespace jet {

std::string_view LibraryVersion() {
    return QUILLON_JET_VERSION;
}

}  // namespace jet
