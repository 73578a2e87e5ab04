#include "run/run.h"

namespace quillon {

Run::Run(Host& hostObject, Files& fileSystem, Clock& runClock, Window& runWindow)
    : host(hostObject), files(fileSystem), clock(runClock), window(runWindow) {}

void Run::ShowItem(std::string_view item) {
    form.aItem = item;
    ProcessEvents();
}

void Run::ProcessEvents() {
    window.ProcessEvents(form);
    if (window.AbortPressed()) AbortRequested = true;
    form.aborting = AbortRequested;
}

void Run::StartCounting(std::size_t total) {
    form.progress = {.done = 0, .total = total};
}

void Run::StartCountingRows(std::string_view from) {
    const std::unique_ptr<RecordSet> rows =
        connection->Query("SELECT Count(*) AS Total FROM " + std::string(from));
    StartCounting(static_cast<std::size_t>(rows->Integer("Total")));
}

void Run::CountDone() {
    // What grew while it was worked on must not look like more than all of it.
    if (form.progress.done < form.progress.total) ++form.progress.done;
}

}  // namespace quillon
