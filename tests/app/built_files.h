#pragma once

#include <string>

/// Paths of what has been built with the tests.
namespace quillon::built {

std::string Program();
/// A window's module of another build of the program.
std::string OtherWindow();
/// A library that is no window's module.
std::string NoWindow();

}  // namespace quillon::built
