#pragma once

#include "jet/check.h"
#include "jet/storage/format/page_store.h"

namespace jet::verify {

/// CheckFile for pages that are at hand, whose header has been looked at.
CheckReport CheckPages(storage::PageStore& store);

}  // namespace jet::verify
