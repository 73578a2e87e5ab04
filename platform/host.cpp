#include "platform/host.h"

#include "platform/basic_text.h"

namespace quillon {

bool IsSwitchedOn(std::string_view value) {
    for (const std::string_view word : {"yes", "on", "true"}) {
        if (EqualIgnoringCase(value, word)) return true;
    }
    return ToNumber(value).value_or(0) != 0;
}

bool IsSwitchedOff(std::string_view value) {
    for (const std::string_view word : {"no", "off", "false"}) {
        if (EqualIgnoringCase(value, word)) return true;
    }
    return ToNumber(value) == 0.0;
}

}  // namespace quillon
