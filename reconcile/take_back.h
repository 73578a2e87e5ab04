#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "run/steps.h"

namespace quillon {

/// How to undo what has been done for something that turns out not to be possible as a whole.
class TakeBack {
  public:
    /// Notes how to undo what was done just now.
    void Add(std::function<void()> work) { works_.push_back(std::move(work)); }

    /// Takes over what another one has noted, as done after all of this.
    void Append(TakeBack& other) {
        for (std::function<void()>& work : other.works_)
            works_.push_back(std::move(work));
        other.works_.clear();
    }

    /// Undoes everything, what was done last first; a failure is logged and the rest goes on.
    template <NamedStep Step>
    void Run(Steps& steps, Step step) {
        for (; !works_.empty(); works_.pop_back())
            steps.Try(step, works_.back());
    }

  private:
    std::vector<std::function<void()>> works_;
};

}  // namespace quillon
