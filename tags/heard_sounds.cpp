#include "tags/heard_sounds.h"

#include "platform/basic_text.h"
#include "platform/content_hash.h"

namespace quillon {

void HeardSounds::Note(std::string_view path, const FileState& file, const SoundPrint& print) {
    sounds_[ContentHash(LowerCase(path))] = {file, print};
}

std::optional<SoundPrint> HeardSounds::Find(std::string_view path, const FileState& file) const {
    const auto found = sounds_.find(ContentHash(LowerCase(path)));
    if (found == sounds_.end() || found->second.file != file) return std::nullopt;
    return found->second.print;
}

}  // namespace quillon
