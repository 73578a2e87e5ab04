#include "taglib/frame_fields.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

/// Names in version 2.2, and in later ones, of which dates have two.
struct FrameField {
    std::string_view shortName, name, newName;
    std::string Tag::* field;
};

constexpr std::array<FrameField, 8> FrameFields{{{"TT2", "TIT2", "TIT2", &Tag::song},
                                                 {"TP1", "TPE1", "TPE1", &Tag::artist},
                                                 {"TAL", "TALB", "TALB", &Tag::album},
                                                 {"TYE", "TYER", "TDRC", &Tag::year},
                                                 {"COM", "COMM", "COMM", &Tag::comment},
                                                 {"TRK", "TRCK", "TRCK", &Tag::track},
                                                 {"TPA", "TPOS", "TPOS", &Tag::disc},
                                                 {"TCO", "TCON", "TCON", &Tag::genre}}};

}  // namespace

std::string Tag::* FieldOfFrame(std::string_view name) {
    const auto found = std::ranges::find_if(FrameFields, [name](const FrameField& field) {
        return name == field.name || name == field.newName || name == field.shortName;
    });
    return found == FrameFields.end() ? nullptr : found->field;
}

}  // namespace quillon
