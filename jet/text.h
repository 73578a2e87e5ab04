#pragma once

#include <string>
#include <string_view>

namespace jet {

/// The text with all differences of letter case removed: texts are equal to the database when they
/// are the same then. Bytes that are no UTF-8 stay.
std::string FoldCase(std::string_view text);

/// How the database sorts texts, made strict: zero exactly when the texts differ in nothing but
/// letter case.
int CompareTexts(std::string_view left, std::string_view right);

}  // namespace jet
