#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>

#include "run/run.h"

namespace quillon {

/// A list whose elements are the steps that the phase does next: announces how many there are, and
/// each as done when the loop goes on after it. A temporary list is kept, any other must outlive
/// this object.
///
///     for (const FileEntry& file : Counted(run, run.files.FilesIn(folder)))
template <typename List>
class Counted {
  public:
    Counted(Run& run, List&& list) : run_(run), list_(std::forward<List>(list)) {
        run_.StartCounting(std::size(list_));
    }

    class Iterator {
      public:
        using Inner = decltype(std::begin(std::declval<std::remove_reference_t<List>&>()));

        Iterator(Run& run, const Inner& inner) : run_(&run), inner_(inner) {}
        decltype(auto) operator*() const { return *inner_; }
        Iterator& operator++() {
            ++inner_;
            run_->CountDone();
            return *this;
        }
        bool operator==(const Iterator& other) const { return inner_ == other.inner_; }

      private:
        Run* run_;
        Inner inner_;
    };

    Iterator begin() { return {run_, std::begin(list_)}; }
    Iterator end() { return {run_, std::end(list_)}; }

  private:
    Run& run_;
    List list_;
};

template <typename List>
Counted(Run&, List&&) -> Counted<List>;

}  // namespace quillon
