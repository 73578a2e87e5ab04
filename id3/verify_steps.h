#pragma once

/// The numbers that failures of the comparison of tags are logged with.
namespace quillon {

constexpr int FilesStep = 3, BracketStep = 4, CompareStep = 5, RowStep = 6, TitleStep = 7;

}  // namespace quillon
