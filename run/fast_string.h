#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// An appending builder for long statements and lines. Joining happens as the parts arrive: the
/// text grows geometrically, so that a million parts cost no more than their characters.
class FastString {
  public:
    /// Appends a part.
    void Add(std::string_view text) { text_ += text; }

    /// All parts joined, with nothing between them.
    const std::string& value() const noexcept { return text_; }

    /// Starts again without parts; the room already won is kept for the next text.
    void Reset() noexcept { text_.clear(); }

  private:
    std::string text_;
};

}  // namespace quillon
