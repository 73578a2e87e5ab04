#pragma once

#include <functional>
#include <string>

namespace quillon {

/// What becomes of one thing that is to be taken back.
struct Outcome {
    enum class State {
        TakenBack,
        WasSo,    ///< it is already as it was before
        Refused,  ///< it was changed since, or cannot be put back
    };
    State state = State::TakenBack;
    std::string reason = {};  ///< of a refusal, in words
    bool operator==(const Outcome&) const = default;

    static Outcome Refusal(std::string why) { return {State::Refused, std::move(why)}; }
};

/// Does something that may fail; "", or why it has failed. What must end the whole undo it throws.
using Attempt = std::function<std::string(const std::function<void()>& work)>;

}  // namespace quillon
