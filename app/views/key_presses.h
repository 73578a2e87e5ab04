#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// Picks the characters that a person typed out of what a terminal sends. Keys such as the arrows
/// send a sequence, often with an "A" at its end: those are passed over as a whole, even where they
/// arrive in pieces, so that no such key presses Abort.
class KeyPresses {
  public:
    /// The ASCII characters typed in this piece of the input.
    std::string Typed(std::string_view input);

  private:
    enum class State { Ground, Escape, Sequence, SequenceStart, OneMore };

    bool IsTyped(char character);

    State state_ = State::Ground;
};

}  // namespace quillon
