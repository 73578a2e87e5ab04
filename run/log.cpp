#include "run/log.h"

#include <exception>
#include <string>

#include "platform/failure.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::size_t MostLostErrors = 10;

/// The log is where failures are reported; when it fails itself, only the views are left to report
/// it, and once is enough: a full disk refuses every record.
void NoteLost(Run& run, LogKind kind, std::string_view source, std::string_view message,
              const std::exception& failure) {
    LostRecords& lost = run.lostRecords;
    if (run.counts.recordsLost++ == 0) {
        lost.reason = DescriptionOf(failure);
        run.window.LogWritten(LogKind::Error, source,
                              "The log cannot be written: " + lost.reason +
                                  ". What is missing from it is only shown here");
    }
    if (kind != LogKind::Error || lost.errors.size() >= MostLostErrors) return;
    lost.errors.push_back(std::string(source).append(": ").append(message));
}

void Write(Run& run, LogKind kind, std::string_view source, std::string_view message) {
    try {
        run.host.WriteLog(source, message);
    } catch (const std::exception& failure) {
        NoteLost(run, kind, source, message, failure);
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
