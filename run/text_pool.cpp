#include "run/text_pool.h"

#include "platform/basic_text.h"

namespace quillon {

TextPool::Number TextPool::Add(std::string_view text) {
    // Rows of one album mostly follow each other.
    if (last_ < texts_.size() && texts_[last_] == text) return last_;
    const auto [entry, isNew] =
        numbers_.try_emplace(LowerCase(text), static_cast<Number>(texts_.size()));
    if (isNew) texts_.emplace_back(text);
    last_ = entry->second;
    return last_;
}

std::optional<TextPool::Number> TextPool::Find(std::string_view text) const {
    const auto found = numbers_.find(LowerCase(text));
    if (found == numbers_.end()) return std::nullopt;
    return found->second;
}

}  // namespace quillon
