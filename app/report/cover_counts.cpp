#include "app/report/cover_counts.h"

#include <algorithm>
#include <variant>

#include "platform/basic_text.h"
#include "undo/net_rows.h"

namespace quillon {
namespace {

std::string TextOrNone(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

}  // namespace

void CoverCounts::Note(const RowChange& row) {
    // The image of an album that goes, goes with it.
    if (row.kind == RowChange::Kind::Removed) return;
    const auto field = std::ranges::find_if(row.fields, [](const FieldChange& change) {
        return change.field == "ImageFile" || EqualIgnoringCase(change.field, "ImageFile");
    });
    if (field == row.fields.end()) return;
    const auto [place, isNew] = images_.try_emplace(KeyText(row.table, row.key));
    Image& image = place->second;
    if (isNew) {
        image.before = image.after = TextOrNone(field->before);
    } else if (std::size_t* const counted = PlaceOf(image)) {
        --*counted;
    }
    image.after = TextOrNone(field->after);
    if (std::size_t* const counted = PlaceOf(image)) ++*counted;
}

std::size_t* CoverCounts::PlaceOf(const Image& image) {
    if (image.before == image.after) return nullptr;
    if (image.before.empty()) return &numbers_.added;
    return image.after.empty() ? &numbers_.removed : &numbers_.changed;
}

}  // namespace quillon
