#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// One of the window's phase indicators.
struct PhaseIndicator {
    std::string_view caption;
    bool visible = true;
    bool selected = false;
    bool isOtherMode = false;  ///< shown, though the mode that runs has no such phase
    /// How long the phase took; nothing while it is not done.
    std::optional<std::chrono::milliseconds> took = {};
};

constexpr std::size_t PhaseCount = 17;

/// How far the running phase has come: something is counted, whose total is known, and that is a
/// share of the phase.
struct PhaseProgress {
    std::size_t done = 0;
    std::size_t total = 0;  ///< 0: not known
    double from = 0,
           to = 1;  ///< where in the phase, of which 1 is the end, the share begins and ends

    bool IsKnown() const { return total > 0; }
    /// The part of the whole phase that is done, from 0 to 1.
    double Part() const {
        return IsKnown()
                   ? from + (to - from) * static_cast<double>(done) / static_cast<double>(total)
                   : from;
    }
};

/// What kind of record of the log it is.
enum class LogKind { Information, Error };

/// What the one window shows. The driver and the phases change it; a view draws it.
struct FormState {
    std::array<PhaseIndicator, PhaseCount> aPhase;
    std::string aItem;          ///< the item being worked on
    std::string aError;         ///< location text of the latest error
    std::string lblver;         ///< "Version " + major.minor.revision
    bool aLblReconcile = true;  ///< visible: "Reconcille Library vs Database"
    PhaseProgress progress;
    bool aborting = false;  ///< the run knows that Abort was pressed and stops at its next test
};

constexpr std::string_view FormCaption = "Library Consistency Management";
constexpr std::string_view ReconcileCaption = "Reconcille Library vs Database";

/// A user interface of the run: a desktop window, a terminal screen or plain lines. Views may draw
/// as seldom as they like; every call returns at once.
class Window {
  public:
    virtual ~Window() = default;

    virtual void Show(const FormState& state) = 0;

    /// Lets pending events run: draws what changed since the last call and takes the person's
    /// input.
    virtual void ProcessEvents(const FormState& state) = 0;

    /// A record has been written to the host's log.
    virtual void LogWritten(LogKind kind, std::string_view source, std::string_view message) = 0;

    /// Whether the person has pressed Abort. Stays true once it is.
    virtual bool AbortPressed() const = 0;

    /// The window closes; nothing is shown any more.
    virtual void Unload() = 0;
};

}  // namespace quillon
