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
}

}  // namespace quillon
