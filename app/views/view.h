#pragma once

#include "app/views/run_summary.h"
#include "platform/window.h"

namespace quillon {

/// A user interface of the run that also summarises it at the end.
class View : public Window {
  public:
    /// Called once, after Unload().
    virtual void Summarize(const RunSummary& summary) = 0;
};

}  // namespace quillon
