#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/window.h"
#include "tests/support/fake_calls.h"

namespace quillon::fakes {

/// A window that notes what a person would see change: "Phase 3", "Item ...", "Error ...".
class FakeWindow : public Window {
  public:
    explicit FakeWindow(Calls& calls) : calls_(calls) {}

    void Show(const FormState& state) override {
        calls_.Note("Show");
        Look(state);
        shown = state;
    }

    void ProcessEvents(const FormState& state) override {
        ++events;
        Look(state);
        if (onEvents) onEvents(state);
    }

    void LogWritten(LogKind kind, std::string_view source, std::string_view message) override {
        logged.emplace_back(kind, std::string(source).append(": ").append(message));
    }
    bool AbortPressed() const override { return abortPressed; }

    void Unload() override { calls_.Note("Unload"); }

    /// Presses Abort in the first events call at which the condition holds.
    void PressAbortWhen(std::function<bool(const FormState&)> condition) {
        onEvents = [this, condition = std::move(condition)](const FormState& state) {
            if (condition(state)) abortPressed = true;
        };
    }

    std::function<void(const FormState&)> onEvents;
    bool abortPressed = false;
    int events = 0;                  ///< calls of ProcessEvents
    std::optional<FormState> shown;  ///< what Show was given
    FormState last;                  ///< what was to be seen last
    std::vector<std::pair<LogKind, std::string>> logged;

  private:
    void Look(const FormState& state) {
        for (std::size_t i = 0; i < PhaseCount; ++i) {
            if (state.aPhase[i].selected && !last.aPhase[i].selected) {
                calls_.Note("Phase " + std::to_string(i));
            }
        }
        if (state.aItem != last.aItem) calls_.Note("Item " + state.aItem);
        if (state.aError != last.aError) calls_.Note("Error " + state.aError);
        last = state;
    }

    Calls& calls_;
};

/// Whether the indicator of this phase is selected, as a condition for `PressAbortWhen`.
inline std::function<bool(const FormState&)> PhaseIsSelected(std::size_t phase) {
    return [phase](const FormState& state) { return state.aPhase[phase].selected; };
}

}  // namespace quillon::fakes
