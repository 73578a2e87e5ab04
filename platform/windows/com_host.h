#pragma once

#include "platform/host.h"
#include "platform/windows/automation.h"

namespace quillon {

/// The home-automation host itself, by its automation object. Failure: what the object says, or
/// that it is not there. To be used by the thread that made it.
class ComHost : public Host {
  public:
    static constexpr std::string_view ProgramId = "Homeseer.application";

    /// Whether the host is installed on this computer.
    static bool IsInstalled();

    ComHost() : object_(AutomationObject::Create(ProgramId)) {}

    std::string GetINISetting(std::string_view section, std::string_view key,
                              std::string_view fallback, std::string_view file) override;
    /// The host gives no lines, so the file in its folder is read. Nothing where it has none.
    std::vector<std::string> GetINILines(std::string_view section, std::string_view file) override;
    void WriteLog(std::string_view source, std::string_view message) override;
    std::vector<std::string> GetPlugins() override;
    std::string GetAppPath() override;

  private:
    ComApartment apartment_;  // outlives the object
    AutomationObject object_;
};

}  // namespace quillon
