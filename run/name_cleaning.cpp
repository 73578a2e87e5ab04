#include "run/name_cleaning.h"

#include <array>

#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::array Nasties{
    Replacement{"?", ""},  Replacement{">", ""},  Replacement{"<", ""},   Replacement{"[", "("},
    Replacement{"]", ")"}, Replacement{"{", ""},  Replacement{"}", ""},   Replacement{"@", ""},
    Replacement{":", ""},  Replacement{"/", "-"}, Replacement{"\\", "-"}, Replacement{"~", ""},
    Replacement{"^", ""},  Replacement{"%", ""},  Replacement{"#", ""},   Replacement{"$", ""},
    Replacement{"*", ""},  Replacement{"`", ""},
};

constexpr std::array PlaylistNasties{
    Replacement{"'", ""}, Replacement{" ", ""},    Replacement{"|", ""},
    Replacement{"+", ""}, Replacement{"&", "And"},
};

}  // namespace

std::string Cleaned(std::string_view text, std::span<const Replacement> rules) {
    std::string clean(text);
    for (const Replacement& rule : rules)
        clean = Replace(clean, rule.from, rule.to);
    return clean;
}

std::string NoNasties(std::string_view text) {
    return Cleaned(text, Nasties);
}

std::string NoPlaylistNasties(std::string_view text) {
    return Cleaned(NoNasties(text), PlaylistNasties);
}

}  // namespace quillon
