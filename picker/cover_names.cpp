#include "picker/cover_names.h"

#include <array>

#include "platform/basic_text.h"
#include "run/name_cleaning.h"

namespace quillon {
namespace {

constexpr std::array Replacements{
    Replacement{"\"", ""}, Replacement{":", ""},   Replacement{" ", ""},  Replacement{"?", ""},
    Replacement{"/", "-"}, Replacement{"\\", "-"}, Replacement{">", ""},  Replacement{"<", ""},
    Replacement{"+", ""},  Replacement{"[", ""},   Replacement{"]", ""},  Replacement{"{", ""},
    Replacement{"}", ""},  Replacement{"~", ""},   Replacement{"@", ""},  Replacement{"^", ""},
    Replacement{"%", ""},  Replacement{"#", ""},   Replacement{"$", ""},  Replacement{"*", ""},
    Replacement{"|", ""},  Replacement{"`", ""},   Replacement{"à", "a"}, Replacement{"â", "a"},
    Replacement{"è", "e"}, Replacement{"é", "e"},  Replacement{"ê", "e"}, Replacement{"ë", "e"},
    Replacement{"î", "i"}, Replacement{"ô", "o"},  Replacement{"ù", "u"}, Replacement{"û", "u"},
    Replacement{"ç", "c"}, Replacement{"À", "A"},  Replacement{"Â", "A"}, Replacement{"È", "E"},
    Replacement{"É", "E"}, Replacement{"Ê", "E"},  Replacement{"Ë", "E"}, Replacement{"Î", "I"},
    Replacement{"Ô", "O"}, Replacement{"Ù", "U"},  Replacement{"Û", "U"}, Replacement{"Ç", "C"},
};

/// "Cover.jpg" and 2 are "Cover-2.jpg".
std::string Numbered(const std::string& name, std::size_t number) {
    const std::size_t dot = std::min(name.rfind('.'), name.size());
    return name.substr(0, dot) + '-' + std::to_string(number) + name.substr(dot);
}

}  // namespace

std::string WebSafeName(std::string_view fileName) {
    return Cleaned(fileName, Replacements);
}

CoverNames::CoverNames(std::string_view webCoverFolder, const std::vector<CoverImage>& images)
    : webCoverFolder_(webCoverFolder) {
    std::vector<const CoverImage*> distinct;
    for (const CoverImage& image : images) {
        if (bySource_.emplace(LowerCase(image.path), distinct.size()).second)
            distinct.push_back(&image);
    }
    for (const CoverImage* const image : distinct)
        Name(*image);
}

/// Whether the name belongs to something else than this image.
bool CoverNames::IsTaken(const std::string& name, const std::string& source) const {
    const std::string key = LowerCase(name), target = LowerCase(webCoverFolder_ + name);
    return key == PlaceholderName || byName_.contains(key) ||
           (bySource_.contains(target) && target != LowerCase(source));
}

void CoverNames::Name(const CoverImage& image) {
    const std::string wanted = WebSafeName(image.name);
    const auto first = byName_.find(LowerCase(wanted));
    const bool contested = first != byName_.end();
    if (contested) copies_[first->second].contested = true;
    std::string name = wanted;
    for (std::size_t number = 2; IsTaken(name, image.path); ++number)
        name = Numbered(wanted, number);
    byName_.emplace(LowerCase(name), copies_.size());
    copies_.push_back({image.path, name, contested});
}

}  // namespace quillon
