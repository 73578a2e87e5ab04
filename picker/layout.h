#pragma once

#include <cstddef>

namespace quillon {

struct Settings;

/// How albums are spread over pages: rows of `wide` cells, `high` rows a page.
class PickerLayout {
  public:
    /// From `ImagesWide` and `ImagesHigh`. Failure: Overflow when a page would hold more albums
    /// than a 16-bit integer can count, InvalidProcedureCall for a size below 1.
    explicit PickerLayout(const Settings& settings);

    std::size_t Wide() const { return wide_; }
    std::size_t PerPage() const { return perPage_; }

    /// How many album pages it takes.
    std::size_t Pages(std::size_t albums) const { return (albums + perPage_ - 1) / perPage_; }
    /// The page, counted from 1, of an album, counted from 0.
    std::size_t PageOf(std::size_t album) const { return album / perPage_ + 1; }

  private:
    std::size_t wide_;
    std::size_t perPage_;
};

}  // namespace quillon
