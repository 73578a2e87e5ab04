#include "jet/engine/number_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace jet::engine {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

struct Parsed {
    double number = 0;
    std::string_view rest;
};

/// A number behind blanks and a sign; nothing for "inf" and "nan", which from_chars would take.
std::optional<Parsed> ParseStart(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (text.empty() || text.find_first_of("0123456789.") != 0) return std::nullopt;
    Parsed parsed;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), parsed.number);
    if (code != std::errc()) return std::nullopt;
    if (negative) parsed.number = -parsed.number;
    parsed.rest = text.substr(static_cast<std::size_t>(end - text.data()));
    return parsed;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
    const auto parsed = ParseStart(text);
    if (!parsed || parsed->rest.find_first_not_of(" \t") != std::string_view::npos)
        return std::nullopt;
    return parsed->number;
}

double LeadingNumber(std::string_view text) {
    const auto parsed = ParseStart(text);
    return parsed ? parsed->number : 0;
}

std::string NumberText(double number) {
    std::array<char, 32> buffer{};
    const bool whole = std::abs(number) < 1e15 && std::trunc(number) == number;
    const auto result = whole ? std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                              static_cast<long long>(number))
                              : std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    std::string text(buffer.data(), result.ptr);
    if (const std::size_t exponent = text.find('e'); exponent != std::string::npos)
        text[exponent] = 'E';
    return text;
}

double RoundHalfEven(double number) {
    const double below = std::floor(number), part = number - below;
    if (part < 0.5) return below;
    if (part > 0.5) return below + 1;
    return std::fmod(below, 2) == 0 ? below : below + 1;
}

}  // namespace jet::engine
