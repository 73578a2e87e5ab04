#pragma once

#include "app/views/run_summary.h"
#include "platform/window.h"

namespace quillon {

/// A face of the run that also tells at the end what the run did.
class View : public Window {
  public:
    /// Called once, after Unload().
    virtual void Summarize(const RunSummary& summary) = 0;
};

}  // namespace quillon
