#include "run/name_cleaning.h"

#include <array>
#include <span>

#include "platform/basic_text.h"

namespace quillon {
namespace {

struct Replacement {
    std::string_view from;
    std::string_view to;
};

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

std::string Cleaned(std::string_view text, std::span<const Replacement> rules) {
    std::string clean(text);
    for (const Replacement& rule : rules)
        clean = Replace(clean, rule.from, rule.to);
    return clean;
}

}  // namespace

std::string NoNasties(std::string_view text) {
    return Cleaned(text, Nasties);
}

std::string NoPlaylistNasties(std::string_view text) {
    return Cleaned(NoNasties(text), PlaylistNasties);
}

}  // namespace quillon
