#pragma once

#include <string_view>
#include <vector>

#include "app/local_host.h"
#include "changes/change.h"

namespace quillon {

/// Puts right what runs and undos that were killed have written in place: a tag that has come to
/// the disk in part is what it was before, and the file that was being written last has its time
/// back. No other run may be at work: call it while the library's database is held. `own` is the
/// stamp of the run that is going on, "" for none. `note` is told of each file. Never fails; what
/// cannot be put right now, since its drive is away, for instance, the note names, too. The answer
/// is that: the run notes it in its journal, and the next one looks at it again.
std::vector<WriteLeft> PutInterruptedWritesRight(LocalHost& local, std::string_view own,
                                                 const NoteSink& note);

}  // namespace quillon
