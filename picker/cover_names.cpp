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

std::string_view FileNameOf(std::string_view path) {
    return path.substr(path.rfind('\\') + 1);
}

/// "Cover.jpg" and 2 are "Cover-2.jpg".
std::string Numbered(const std::string& name, std::size_t number) {
    const std::size_t dot = std::min(name.rfind('.'), name.size());
    return name.substr(0, dot) + '-' + std::to_string(number) + name.substr(dot);
}

}  // namespace

std::string WebSafeName(std::string_view fileName) {
    return Cleaned(fileName, Replacements);
}

CoverNames::CoverNames(std::string_view webCoverFolder, const std::vector<std::string>& sources)
    : webCoverFolder_(webCoverFolder) {
    std::vector<std::string> distinct;
    for (const std::string& source : sources) {
        if (bySource_.emplace(LowerCase(source), distinct.size()).second) {
            distinct.push_back(source);
        }
    }
    for (const std::string& source : distinct)
        Name(source);
}

/// Whether the name belongs to something else than this image.
bool CoverNames::IsTaken(const std::string& name, const std::string& source) const {
    const std::string key = LowerCase(name), target = LowerCase(webCoverFolder_ + name);
    return key == PlaceholderName || byName_.contains(key) ||
           (bySource_.contains(target) && target != LowerCase(source));
}

void CoverNames::Name(const std::string& source) {
    const std::string wanted = WebSafeName(FileNameOf(source));
    const auto first = byName_.find(LowerCase(wanted));
    const bool contested = first != byName_.end();
    if (contested) copies_[first->second].contested = true;
    std::string name = wanted;
    for (std::size_t number = 2; IsTaken(name, source); ++number)
        name = Numbered(wanted, number);
    byName_.emplace(LowerCase(name), copies_.size());
    copies_.push_back({source, name, contested});
}

}  // namespace quillon
