#include "taglib/field_text.h"

#include <algorithm>

#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::string_view Digits = "0123456789";

std::string NumberIn(std::string_view value) {
    constexpr std::size_t MostDigits = 4;
    value = Trim(value);
    std::string_view number = value.substr(0, value.find_first_not_of(Digits));
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return std::string(number.size() > MostDigits ? std::string_view() : number);
}

std::string YearIn(std::string_view value) {
    constexpr std::size_t YearDigits = 4;
    const std::string_view year = Trim(value).substr(0, YearDigits);
    const bool isYear =
        year.size() == YearDigits && year.find_first_not_of(Digits) == std::string_view::npos;
    return std::string(isYear ? year : std::string_view());
}

}  // namespace

std::string FieldValueOf(std::string Tag::* field, std::string value) {
    if (field == &Tag::track || field == &Tag::disc) return NumberIn(value);
    if (field == &Tag::year) return YearIn(value);
    return value;
}

void MarkIfAny(Tag& tag) {
    const bool isAny =
        !tag.disc.empty() || std::ranges::any_of(TagFields, [&tag](const TagField& field) {
            return !Trim(tag.*field.text).empty();
        });
    if (isAny) tag.marker = "TAG";
}

}  // namespace quillon
