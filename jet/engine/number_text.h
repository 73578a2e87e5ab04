#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace jet::engine {

/// A whole text that is a number, blanks around it allowed ("12", " -3.5e2 "). Empty otherwise.
std::optional<double> ParseNumber(std::string_view text);

/// The number at a text's beginning, as Val reads it; 0 if there is none.
double LeadingNumber(std::string_view text);

/// The shortest text that reads as the same number: "5", "0.1", "1E+20".
std::string NumberText(double number);

/// To the nearest whole number, halves to the even one.
double RoundHalfEven(double number);

}  // namespace jet::engine
