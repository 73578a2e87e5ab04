#pragma once

#include <string>
#include <vector>

#include "bench/session.h"

namespace quillon::bench {

/// A figure beside what it should be.
struct Aim {
    std::string what;
    std::string figure;
    std::string wanted;
    bool met;
};

/// All that the program is held against. What needs a program that is not installed is left out.
std::vector<Aim> Aims(const Figures& figures);

}  // namespace quillon::bench
