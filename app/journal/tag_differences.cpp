#include "app/journal/tag_differences.h"

#include <cstdint>
#include <optional>

#include "platform/basic_text.h"
#include "tags/tag.h"

namespace quillon {
namespace {

constexpr int NoGenre = 255;

std::string BytesOf(const std::optional<FileContent>& content) {
    return content ? content->bytes.value_or("") : "";
}

Tag TagOf(const std::string& bytes) {
    const std::vector<std::uint8_t> copy(bytes.begin(), bytes.end());
    return copy.size() < TagSize ? Tag{} : TagIn(copy);
}

int GenreIn(const std::string& bytes) {
    return bytes.size() < TagSize ? NoGenre : int{static_cast<std::uint8_t>(bytes.back())};
}

}  // namespace

TagDifferences TagDifferencesOf(const FileChange& change) {
    const std::string before = BytesOf(change.before), after = BytesOf(change.after);
    const Tag old = TagOf(before), present = TagOf(after);
    TagDifferences differences{.hadTag = old.IsThere(), .fields = {}};
    for (const TagField& field : TagFields) {
        std::string from(Trim(old.*field.text)), to(Trim(present.*field.text));
        if (from != to && field.text != &Tag::marker)
            differences.fields.push_back(
                {std::string(field.label), std::move(from), std::move(to)});
    }
    if (GenreIn(before) != GenreIn(after)) {
        differences.fields.push_back({"Genre number", std::to_string(GenreIn(before)),
                                      std::to_string(GenreIn(after)), true});
    }
    return differences;
}

}  // namespace quillon
