#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "app/journal/change_text.h"
#include "app/text/display_text.h"
#include "platform/ansi.h"

namespace quillon {
namespace {

/// Beyond this many comparisons all that is between the common ends counts as different.
constexpr std::size_t MostComparisons = 1'000'000;

using Lines = std::vector<std::string_view>;

Lines LinesIn(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// How long the longest common sequence is from each pair of positions on.
std::vector<std::vector<std::size_t>> CommonLengths(const Lines& before, const Lines& after) {
    std::vector<std::vector<std::size_t>> lengths(before.size() + 1,
                                                  std::vector<std::size_t>(after.size() + 1));
    for (std::size_t i = before.size(); i-- > 0;) {
        for (std::size_t j = after.size(); j-- > 0;) {
            lengths[i][j] = before[i] == after[j] ? lengths[i + 1][j + 1] + 1
                                                  : std::max(lengths[i + 1][j], lengths[i][j + 1]);
        }
    }
    return lengths;
}

void DropCommonEnds(Lines& before, Lines& after) {
    const auto [left, right] =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    before.erase(before.begin(), left);
    after.erase(after.begin(), right);
    while (!before.empty() && !after.empty() && before.back() == after.back()) {
        before.pop_back();
        after.pop_back();
    }
}

class Differences {
  public:
    explicit Differences(std::size_t most) : most_(most) {}

    void Add(char sign, std::string_view line) {
        if (++count_ > most_) return;
        text_ += std::string("    ") + sign + ' ' + OneLine(AnsiToUtf8(line)) + '\n';
    }
    std::string Text() const {
        if (count_ <= most_) return text_;
        return text_ + "    ... and " + std::to_string(count_ - most_) + " lines more\n";
    }

  private:
    std::size_t most_, count_ = 0;
    std::string text_;
};

}  // namespace

std::string LineDifferences(std::string_view before, std::string_view after, std::size_t most) {
    Lines old = LinesIn(before), present = LinesIn(after);
    DropCommonEnds(old, present);
    Differences differences(most);
    std::size_t i = 0, j = 0;
    if (old.size() * present.size() <= MostComparisons) {
        const auto lengths = CommonLengths(old, present);
        while (i < old.size() && j < present.size()) {
            if (old[i] == present[j]) {
                ++i;
                ++j;
            } else if (lengths[i + 1][j] >= lengths[i][j + 1]) {
                differences.Add('-', old[i++]);
            } else {
                differences.Add('+', present[j++]);
            }
        }
    }
    while (i < old.size())
        differences.Add('-', old[i++]);
    while (j < present.size())
        differences.Add('+', present[j++]);
    return differences.Text();
}

}  // namespace quillon
