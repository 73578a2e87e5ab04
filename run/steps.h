#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quillon {

class Run;

/// What a step of a procedure is called by: an enumerator of that procedure, whose value is the
/// number that the log gives for it.
template <typename Step>
concept NamedStep = std::is_enum_v<Step>;

/// The one way in which failures are caught. A procedure makes one object with its location text
/// and puts the work that may fail into calls of it; a failure is logged through LogError and goes
/// no further. There is no other try/catch in the core.
///
/// Resume with the next statement: a procedure of several `Try` calls, one a step.
/// Leave the procedure: one `Try` around the whole body.
class Steps {
  public:
    /// `location` is the procedure's fixed text in the log.
    Steps(Run& run, std::string location) : run_(run), location_(std::move(location)) {}

    /// Runs one step. A failure in it is logged as location + " Line " + the step's number +
    /// description. Returns whether the step succeeded.
    template <NamedStep Step, typename Work>
    bool Try(Step step, Work&& work) {
        return Perform(location_, static_cast<int>(step), std::forward<Work>(work));
    }

    /// The same in a procedure that numbers no steps: the log says 0.
    template <typename Work>
    bool Try(Work&& work) {
        return Perform(location_, 0, std::forward<Work>(work));
    }

    /// The same with a location text of this step's own.
    template <NamedStep Step, typename Work>
    bool TryAs(const std::string& location, Step step, Work&& work) {
        return Perform(location, static_cast<int>(step), std::forward<Work>(work));
    }

    /// Names what the following steps work on: it is appended to descriptions that do not name it.
    void Concerning(std::string_view subject) { subject_ = subject; }

    /// Ends what is logged of the following steps with these words, what to do for instance.
    void Advising(std::string advice) { advice_ = std::move(advice); }

  private:
    template <typename Work>
    bool Perform(const std::string& location, int number, Work&& work) {
        try {
            std::forward<Work>(work)();
            return true;
        } catch (const std::exception& failure) {
            Report(location, number, failure);
            return false;
        }
    }

    void Report(const std::string& location, int number, const std::exception& failure);

    Run& run_;
    std::string location_;
    std::string subject_;
    std::string advice_;
};

}  // namespace quillon
