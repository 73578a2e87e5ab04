#include "library/shared_texts.h"

#include <cstdint>
#include <functional>
#include <variant>

namespace quillon {

SharedText SharedTexts::Keep(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    if (text == nullptr) return {};
    for (const RowText* const last : last_)
        if (last != nullptr && *last == *text) return SharedText(*last);
    const auto hash = static_cast<std::uint32_t>(std::hash<std::string>{}(*text));
    const RowText* kept = nullptr;
    bySpelling_.ForEach(hash, [&](RowIndex::Row row) {
        if (texts_[row] == *text) kept = &texts_[row];
    });
    if (kept == nullptr) {
        bySpelling_.Add(hash, static_cast<RowIndex::Row>(texts_.size()));
        kept = &texts_.emplace_back(*text);
    }
    last_[nextLast_] = kept;
    nextLast_ = (nextLast_ + 1) % last_.size();
    return SharedText(*kept);
}

}  // namespace quillon
