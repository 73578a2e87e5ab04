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
    state.progress = {.done = 37, .total = 100};
    return state;
}

void WriteLog(quillon::TerminalView& view) {
    using enum quillon::LogKind;
    view.LogWritten(Information, "Quillon",
                    "252E671073EC0008 3 Playlist 音楽.pla, Track # updated");
    view.LogWritten(Information, "Quillon", "Cover without an album: D:\\Covers\\Alder - Dusk.jpg");
    view.LogWritten(Error, "Quillon",
                    "ProcessTracks Line 0 Path not found: D:\\Music\\Sängerin\\First Light\\01 - "
                    "Dawn.mp3");
}

void Play(std::string_view end) {
    const auto view = quillon::TerminalView::Make();
    if (view == nullptr) throw std::runtime_error("no screen here");
    quillon::FormState state = SelectedPhase();
    view->Show(state);
    WriteLog(*view);
    for (int i = 0; !view->AbortPressed() || end == "stuck"; ++i) {
        state.aItem = std::to_string(i) +
                      ". Reconcile Folder Tracks with Database for Artist Sängerin 音楽 und das "
                      "Orchester der kleinen Bühne am Hafen, Live";
        view->ProcessEvents(state);
        std::this_thread::sleep_for(1ms);
    }
    if (end == "throw") throw std::runtime_error("thrown while the screen was up");
    view->Unload();
    quillon::RunCounts counts;
    counts.albumsAdded = 2;
    counts.albumsUnchanged = 398;
    counts.tracksAdded = 12;
    counts.tracksUnchanged = 4310;
    counts.errors = 1;
    quillon::RunSummary summary{quillon::RunOutcome::Aborted, counts, 7s};
    if (end == "losses") {
        summary.counts.tracksRemoved = 12;
        quillon::Removals removals;
        for (int i = 1; i <= 12; ++i)
            removals.Note(quillon::Removable::Tracks,
                          "D:\\Music\\Alder\\Gone" + std::to_string(i) + ".mp3");
        summary.gone = removals.All();
    }
    view->Summarize(summary);
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
