#include "library/shared_texts.h"

#include <cstdint>
#include <functional>
#include <variant>

namespace quillon {

SharedText SharedTexts::Keep(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    if (text == nullptr) return {};
    if (last_ != nullptr && *last_ == *text) return SharedText(*last_);
    const auto hash = static_cast<std::uint32_t>(std::hash<std::string>{}(*text));
    const RowText* kept = nullptr;
    bySpelling_.ForEach(hash, [&](RowIndex::Row row) {
        if (texts_[row] == *text) kept = &texts_[row];
    });
    if (kept == nullptr) {
        bySpelling_.Add(hash, static_cast<RowIndex::Row>(texts_.size()));
        kept = &texts_.emplace_back(*text);
    }
    last_ = kept;
    return SharedText(*kept);
}

}  // namespace quillon
