#pragma once

#include "jet/error.h"

namespace fuzz {

/// Does what may be refused: a jet::Error is an answer like any other.
template <typename Work>
void Attempt(const Work& work) {
    try {
        work();
    } catch (const jet::Error&) {
        return;
    }
}

}  // namespace fuzz
