#pragma once

namespace quillon {

struct Walk;

/// Walks the tree layout: artist folders that hold album folders that hold files.
void WalkTree(Walk& walk);

}  // namespace quillon
