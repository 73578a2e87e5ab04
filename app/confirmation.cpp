#include "app/confirmation.h"

#include <istream>
#include <ostream>
#include <string>

namespace quillon {

bool IsConfirmed(std::string_view question, std::istream& in, std::ostream& out) {
    out << question << " [y/N] " << std::flush;
    std::string answer;
    if (!std::getline(in, answer)) {
        out << '\n';
        return false;
    }
    const std::size_t first = answer.find_first_not_of(" \t");
    return first != std::string::npos && (answer[first] == 'y' || answer[first] == 'Y');
}

}  // namespace quillon
