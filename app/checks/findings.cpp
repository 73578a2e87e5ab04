#include "app/checks/findings.h"

#include <ostream>
#include <string_view>

#include "app/text/display_text.h"

namespace quillon {
namespace {

constexpr std::size_t FindingColumns = 80;
constexpr std::string_view Bullet = "  - ", Indent = "    ";

std::string Sentence(std::string text) {
    if (!text.ends_with('.')) text += '.';
    return text;
}

void TellWrapped(std::string_view text, std::ostream& out) {
    std::string_view lead = Bullet;
    for (const std::string& line : WrapWords(text, FindingColumns - Indent.size())) {
        out << lead << line << '\n';
        lead = Indent;
    }
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
