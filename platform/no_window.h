#pragma once

#include <string_view>

#include "platform/window.h"

namespace quillon {

/// Shows nothing, and nobody presses Abort.
class NoWindow : public Window {
  public:
    void Show(const FormState&) override {}
    void ProcessEvents(const FormState&) override {}
    void LogWritten(LogKind, std::string_view, std::string_view) override {}
    bool AbortPressed() const override { return false; }
    void Unload() override {}
};

}  // namespace quillon
