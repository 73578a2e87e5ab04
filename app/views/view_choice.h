#pragma once

#include <vector>

#include "app/requests.h"

namespace quillon {

/// What a run finds around it when it starts.
struct Surroundings {
    bool inputIsTerminal = false, outputIsTerminal = false;
    bool display = false;   ///< a variable names one
    bool launched = false;  ///< a desktop's launcher has left its mark
};

/// Those of this process.
Surroundings LookAround();

/// The views to try, in this order, for what was asked for; the last one is always to be had when
/// the choice was left to the program.
std::vector<ViewKind> ViewsToTry(ViewKind asked, const Surroundings& surroundings);

/// Whether a desktop's menu or icon has started this process, so that nobody sees its output.
bool IsLaunchersChild(const Surroundings& surroundings);

}  // namespace quillon
