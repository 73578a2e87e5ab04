#include "app/abort_request.h"

#include <atomic>

#include "app/signals.h"

namespace quillon {
namespace {

// A signal handler receives no context, so what it shares with the program lives here.
std::atomic<bool> abortRequested{false};
std::atomic<bool> askedByPerson{false};
std::atomic<void (*)() noexcept> lastAct{nullptr};
static_assert(std::atomic<bool>::is_always_lock_free);
static_assert(std::atomic<void (*)() noexcept>::is_always_lock_free);

}  // namespace

void ForgetAbortRequest() noexcept {
    abortRequested = false;
    askedByPerson = false;
}

void RequestAbort() noexcept {
    abortRequested = true;
}

bool HasLostPatience() noexcept {
    if (!askedByPerson.exchange(true)) return false;
    if (auto* const act = lastAct.load(); act != nullptr) act();
    return true;
}

bool AbortSignals::AbortRequested() noexcept {
    return abortRequested.load();
}

void AbortSignals::SetLastAct(void (*act)() noexcept) noexcept {
    lastAct = act;
}

}  // namespace quillon
