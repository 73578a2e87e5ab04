#include "packaging/roff.h"

#include <fmt/format.h>
#include <stdexcept>

#include "app/text/display_text.h"

namespace quillon {
namespace {

std::string_view Escaped(char character) {
    switch (character) {
        case '\\':
            return "\\e";
        case '-':
            return "\\-";
        case '\'':
            return "\\(aq";
        case '`':
            return "\\(ga";
        case '^':
            return "\\(ha";
        case '~':
            return "\\(ti";
        default:
            return "";
    }
}

}  // namespace

std::string RoffText(std::string_view text) {
    std::string roff;
    // A line that begins with a dot is a request.
    if (text.starts_with('.')) roff += "\\&";
    for (const char character : text) {
        const std::string_view escaped = Escaped(character);
        if (escaped.empty()) {
            roff += character;
        } else {
            roff += escaped;
        }
    }
    return roff;
}

std::string RoffParagraph(std::string_view text) {
    constexpr std::size_t LineColumns = 72;
    std::string lines;
    for (const std::string& line : WrapWords(text, LineColumns))
        lines += RoffText(line) + '\n';
    return lines;
}

std::string FillFrame(std::string_view frame, const std::map<std::string, std::string>& values) {
    constexpr std::string_view Letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::string page;
    for (;;) {
        const std::size_t start = frame.find('@');
        page += frame.substr(0, start);
        if (start == std::string_view::npos) return page;
        frame.remove_prefix(start + 1);
        const std::size_t end = frame.find_first_not_of(Letters);
        if (end == 0 || end == std::string_view::npos || frame[end] != '@') {
            page += '@';
            continue;
        }
        const std::string name(frame.substr(0, end));
        const auto value = values.find(name);
        if (value == values.end())
            throw std::runtime_error(fmt::format("the frame of the page asks for @{}@", name));
        page += value->second;
        frame.remove_prefix(end + 1);
    }
}

}  // namespace quillon
