#include "app/checks/findings.h"

#include <algorithm>
#include <ostream>
#include <string_view>

#include "app/display_text.h"

namespace quillon {
namespace {

constexpr std::size_t LineColumns = 80;
constexpr std::string_view Bullet = "  - ", Indent = "    ";

std::string Sentence(std::string text) {
    if (!text.ends_with('.')) text += '.';
    return text;
}

/// A word that is longer than a line stays whole: it is a path, and paths get copied.
void TellWrapped(std::string_view text, std::ostream& out) {
    std::string line(Bullet);
    bool hasWord = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (hasWord && DisplayColumns(line) + 1 + DisplayColumns(word) > LineColumns) {
            out << line << '\n';
            line = Indent;
            hasWord = false;
        }
        if (hasWord) line += ' ';
        line += word;
        hasWord = true;
    }
    out << line << '\n';
}

void Tell(std::string_view title, const std::vector<std::string>& findings, std::ostream& out) {
    if (findings.empty()) return;
    out << '\n' << title << '\n';
    for (const std::string& finding : findings)
        TellWrapped(Sentence(OneLine(finding)), out);
}

}  // namespace

void TellFindings(const Findings& findings, std::ostream& out) {
    Tell("Problems", findings.problems, out);
    Tell("Worth a look", findings.cautions, out);
}

}  // namespace quillon
