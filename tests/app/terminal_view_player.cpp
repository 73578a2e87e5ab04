// Plays a run on the terminal it is started in, for terminal_view_test.py. It lasts until it is
// aborted. The argument chooses the end: "summary" as a run ends, "throw" by an exception, "stuck"
// never by itself.
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "app/signals.h"
#include "app/views/terminal_view.h"
#include "driver/phase_captions.h"

namespace {

using namespace std::chrono_literals;

quillon::FormState SelectedPhase() {
    quillon::FormState state;
    for (std::size_t i = 0; i < quillon::PhaseCount; ++i)
        state.aPhase[i].caption = quillon::PhaseCaptions[i];
    state.aPhase[3].selected = true;
    state.lblver = "Version 1.2.3";
    state.aError = "ProcessTracks";
    return state;
}

void Play(std::string_view end) {
    const auto view = quillon::TerminalView::Make();
    if (view == nullptr) throw std::runtime_error("no screen here");
    quillon::FormState state = SelectedPhase();
    view->Show(state);
    view->LogWritten(quillon::LogKind::Error, "Quillon", "ProcessTracks Line 0 Path not found");
    for (int i = 0; !view->AbortPressed() || end == "stuck"; ++i) {
        state.aItem = std::to_string(i) + ". Sängerin 音楽";
        view->ProcessEvents(state);
        std::this_thread::sleep_for(1ms);
    }
    if (end == "throw") throw std::runtime_error("thrown while the screen was up");
    view->Unload();
    view->Summarize({quillon::RunOutcome::Aborted, {}, 7s});
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const quillon::AbortSignals signals;
    try {
        Play(argumentCount > 1 ? arguments[1] : "summary");
        return 0;
    } catch (const std::exception& error) {
        std::cout << "caught: " << error.what() << '\n';
        return 1;
    }
}
