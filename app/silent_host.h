#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/host.h"

namespace quillon {

/// The host, whose log takes nothing: what a check or a preview finds out is no business of a run's
/// log.
class SilentHost : public Host {
  public:
    explicit SilentHost(Host& host) : host_(host) {}
    std::string GetINISetting(std::string_view section, std::string_view key,
                              std::string_view fallback, std::string_view file) override {
        return host_.GetINISetting(section, key, fallback, file);
    }
    std::vector<std::string> GetINILines(std::string_view section, std::string_view file) override {
        return host_.GetINILines(section, file);
    }
    void WriteLog(std::string_view, std::string_view) override {}
    std::vector<std::string> GetPlugins() override { return host_.GetPlugins(); }
    std::string GetAppPath() override { return host_.GetAppPath(); }

  private:
    Host& host_;
};

}  // namespace quillon
