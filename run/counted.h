#pragma once

#include <cmath>
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>

#include "run/run.h"

namespace quillon {

/// While this object lives, what is counted is a share of what was counted before: of the phase, or
/// of another share. So a phase that counts several things one after the other has one bar.
class Share {
  public:
    /// From and to are parts of the whole: 0 is its begin and 1 its end.
    Share(Run& run, double from, double to) : run_(run), whole_(run.form.progress), to_(to) {
        const double length = whole_.to - whole_.from;
        run.form.progress = {.from = whole_.from + length * from, .to = whole_.from + length * to};
    }
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;
    ~Share() {
        if (run_.AbortRequested) return;
        constexpr std::size_t Fine = 1000;
        run_.form.progress = {.done = static_cast<std::size_t>(std::lround(to_ * Fine)),
                              .total = Fine,
                              .from = whole_.from,
                              .to = whole_.to};
    }

  private:
    Run& run_;
    PhaseProgress whole_;
    double to_;
};

/// The elements of lists that are worked off one after the other, each list as its share of them
/// all.
class SharesBySize {
  public:
    SharesBySize(Run& run, std::size_t total) : run_(run), total_(total) {}

    /// The share of the next list, which has so many elements.
    Share Next(std::size_t size) {
        const std::size_t from = done_;
        done_ += size;
        return {run_, PartAt(from), PartAt(done_)};
    }

  private:
    double PartAt(std::size_t element) const {
        return total_ == 0 ? 0 : static_cast<double>(element) / static_cast<double>(total_);
    }

    Run& run_;
    std::size_t total_;
    std::size_t done_ = 0;
};

/// A list whose elements are the steps of what the phase does next, or of the share of it that was
/// started: announces how many there are, and
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
