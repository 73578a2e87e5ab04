#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/basic_text.h"
#include "tags/tag.h"

namespace quillon::support {

/// The tag that a record tells; what comes behind its ninth piece is left out.
inline Tag TagOfRecord(std::string_view record) {
    const std::vector<std::string> pieces = Split(record, "|");
    Tag tag;
    for (std::size_t i = 0; i < TagFields.size() && i < pieces.size(); ++i)
        tag.*TagFields[i].text = pieces[i];
    return tag;
}

}  // namespace quillon::support
