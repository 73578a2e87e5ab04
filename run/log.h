#pragma once

#include <string_view>

namespace quillon {

class Run;

/// The source word of the tool's own log records.
constexpr std::string_view LogSource = "Quillon";

/// A failure that is being handled: the number of the step that failed and its description.
struct PendingError {
    int step = 0;
    std::string_view description;
};

/// Logs location + (pending ? " Line " + step + " " + description : ""), shows the location in the
/// window's `aError` and lets pending events run. Counts the run's errors. Never fails visibly.
void LogError(Run& run, std::string_view source, std::string_view location,
              const PendingError* pending = nullptr);

/// Writes a record that is not an error.
void WriteLog(Run& run, std::string_view source, std::string_view message);

}  // namespace quillon
