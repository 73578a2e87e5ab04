#include "app/text/display_text.h"

#include <fmt/format.h>
#include <optional>
#include <ranges>
#include <utf8proc.h>
#include <vector>

namespace quillon {
namespace {

constexpr std::string_view ReplacementCharacter = "\xEF\xBF\xBD";
constexpr std::string_view Ellipsis = "\xE2\x80\xA6";

/// One step through a text: the bytes of the character in front, and the character where the bytes
/// are one.
struct Character {
    std::string_view bytes;
    std::optional<utf8proc_int32_t> code;
};

Character FirstCharacter(std::string_view text) {
    utf8proc_int32_t code = 0;
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const utf8proc_ssize_t length =
        utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &code);
    if (length <= 0) return {text.substr(0, 1), std::nullopt};
    return {text.substr(0, static_cast<std::size_t>(length)), code};
}

std::size_t Columns(const Character& character) {
    if (!character.code) return 1;
    return static_cast<std::size_t>(utf8proc_charwidth(*character.code));
}

/// What a person sees as one character: a letter with its accents, an emoji of several parts.
struct Cluster {
    std::string_view bytes;
    std::size_t columns = 0;
};

std::vector<Cluster> ClustersOf(std::string_view text) {
    std::vector<Cluster> clusters;
    std::optional<utf8proc_int32_t> before;
    utf8proc_int32_t state = 0;
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        const bool joins = before && character.code &&
                           utf8proc_grapheme_break_stateful(*before, *character.code, &state) == 0;
        if (!joins) {
            clusters.push_back({text.substr(0, 0), 0});
            state = 0;
        }
        Cluster& cluster = clusters.back();
        cluster.bytes = {cluster.bytes.data(), cluster.bytes.size() + character.bytes.size()};
        cluster.columns += Columns(character);
        before = character.code;
        text.remove_prefix(character.bytes.size());
    }
    return clusters;
}

/// How many bytes of these clusters fit into so many columns; takes those columns away.
template <typename Clusters>
std::size_t BytesThatFit(const Clusters& clusters, std::size_t& columns) {
    std::size_t bytes = 0;
    for (const Cluster& cluster : clusters) {
        if (cluster.columns > columns) break;
        columns -= cluster.columns;
        bytes += cluster.bytes.size();
    }
    return bytes;
}

bool IsControl(utf8proc_int32_t code) {
    const bool separatesLines = code == 0x2028 || code == 0x2029;
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || separatesLines;
}

}  // namespace

std::size_t DisplayColumns(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        columns += Columns(character);
        text.remove_prefix(character.bytes.size());
    }
    return columns;
}

std::string FitColumns(std::string_view text, std::size_t columns) {
    if (columns == 0) return "";
    std::size_t taken = 0;
    std::size_t bytes = 0;      // what is shown when the whole text fits
    std::size_t bytesKept = 0;  // what leaves a column for the ellipsis
    while (bytes < text.size()) {
        const Character character = FirstCharacter(text.substr(bytes));
        taken += Columns(character);
        if (taken > columns) return std::string(text.substr(0, bytesKept)).append(Ellipsis);
        bytes += character.bytes.size();
        if (taken < columns) bytesKept = bytes;
    }
    return std::string(text);
}

std::string ShortenMiddle(std::string_view text, std::size_t columns) {
    if (columns == 0) return "";
    if (DisplayColumns(text) <= columns) return std::string(text);
    const std::vector<Cluster> clusters = ClustersOf(text);
    std::size_t tailColumns = (columns - 1) / 2;
    std::size_t headColumns = columns - 1 - tailColumns;
    const std::size_t tail = BytesThatFit(std::views::reverse(clusters), tailColumns);
    // A wide character that found no room at the end may leave a column to the beginning.
    headColumns += tailColumns;
    const std::size_t head = BytesThatFit(clusters, headColumns);
    return std::string(text.substr(0, head))
        .append(Ellipsis)
        .append(text.substr(text.size() - tail));
}

std::string OneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (!character.code) {
            line += ReplacementCharacter;
        } else if (IsControl(*character.code)) {
            line += ' ';
        } else {
            line += character.bytes;
        }
        text.remove_prefix(character.bytes.size());
    }
    return line;
}

std::vector<std::string> WrapWords(std::string_view text, std::size_t columns) {
    std::vector<std::string> lines;
    std::string line;
    bool hasWord = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (hasWord && DisplayColumns(line) + 1 + DisplayColumns(word) > columns) {
            lines.push_back(std::move(line));
            line.clear();
            hasWord = false;
        }
        if (hasWord) line += ' ';
        line += word;
        hasWord = true;
    }
    if (hasWord) lines.push_back(std::move(line));
    return lines;
}

std::string CountText(std::size_t count, std::string_view word) {
    return fmt::format("{} {}{}", count, word, count == 1 ? "" : "s");
}

std::string ElapsedText(std::chrono::seconds elapsed) {
    const auto seconds = elapsed.count();
    return fmt::format("{}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string DurationText(std::chrono::milliseconds duration) {
    const auto milliseconds = duration.count();
    if (milliseconds >= 1000)
        return ElapsedText(std::chrono::duration_cast<std::chrono::seconds>(duration));
    // Rounded down, so that nothing becomes a whole second here.
    if (milliseconds >= 100) return fmt::format("0.{} s", milliseconds / 100);
    return fmt::format("0.0{} s", std::max<std::chrono::milliseconds::rep>(milliseconds / 10, 1));
}

}  // namespace quillon
