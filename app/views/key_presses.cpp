#include "app/views/key_presses.h"

namespace quillon {
namespace {

constexpr char EscapeCharacter = '\x1B';

bool EndsSequence(char character) {
    return character >= '@' && character <= '~';
}

}  // namespace

std::string KeyPresses::Typed(std::string_view input) {
    std::string typed;
    for (const char character : input) {
        if (IsTyped(character)) typed += character;
    }
    return typed;
}

bool KeyPresses::IsTyped(char character) {
    if (character == EscapeCharacter) {
        state_ = State::Escape;
        return false;
    }
    switch (state_) {
        case State::Ground:
            return character > ' ' && character <= '~';
        case State::Escape:
            if (character == '[') {
                state_ = State::SequenceStart;
            } else {
                state_ = character == 'O' ? State::Sequence : State::Ground;
            }
            return false;
        case State::SequenceStart:
            // The Linux console sends a second bracket for its function keys, then one character.
            if (character == '[') {
                state_ = State::OneMore;
                return false;
            }
            [[fallthrough]];
        case State::Sequence:
            state_ = EndsSequence(character) ? State::Ground : State::Sequence;
            return false;
        case State::OneMore:
            state_ = State::Ground;
            return false;
    }
    return false;
}

}  // namespace quillon
