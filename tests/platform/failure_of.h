#pragma once

#include <string>

#include "platform/failure.h"

namespace quillon {

/// The description of the failure that an action ends in, "" when it ends well.
template <typename Action>
std::string FailureOf(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

}  // namespace quillon
