#include "run/connection_value.h"

#include "platform/basic_text.h"

namespace quillon {

std::string QuotedConnectionValue(std::string_view value, char quote) {
    const std::string one(1, quote);
    return one + Replace(value, one, one + one) + one;
}

}  // namespace quillon
