#include "run/log.h"

#include <exception>
#include <string>

#include "run/run.h"

namespace quillon {
namespace {

void Write(Run& run, LogKind kind, std::string_view source, std::string_view message) {
    try {
        run.host.WriteLog(source, message);
    } catch (const std::exception& failure) {
        // The log is where failures are told; when it fails itself, only the window is left to
        // tell it, and the run must not end for it.
        run.window.LogWritten(LogKind::Error, source, failure.what());
    }
    run.window.LogWritten(kind, source, message);
}

}  // namespace

void LogError(Run& run, std::string_view source, std::string_view location,
              const PendingError* pending) {
    std::string message(location);
    if (pending != nullptr) {
        message += " Line " + std::to_string(pending->step) + " ";
        message += pending->description;
    }
    ++run.counts.errors;
    Write(run, LogKind::Error, source, message);
    run.form.aError = location;
    run.ProcessEvents();
}

void WriteLog(Run& run, std::string_view source, std::string_view message) {
    Write(run, LogKind::Information, source, message);
}

}  // namespace quillon
