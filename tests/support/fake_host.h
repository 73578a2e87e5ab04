#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/basic_text.h"
#include "platform/host.h"
#include "tests/support/fake_calls.h"

namespace quillon::fakes {

/// A host whose settings, plug-ins and log are plain members.
class FakeHost : public Host {
  public:
    explicit FakeHost(Calls& calls) : calls_(calls) {}

    /// Puts a setting into section "NPFrame".
    void Set(const std::string& key, const std::string& text) { settings[LowerCase(key)] = text; }

    std::string GetINISetting(std::string_view section, std::string_view key,
                              std::string_view fallback, std::string_view file) override {
        calls_.Note("GetINISetting " + std::string(section) + " " + std::string(key) + " " +
                    std::string(file));
        const auto found = settings.find(LowerCase(key));
        return found == settings.end() ? std::string(fallback) : found->second;
    }

    std::vector<std::string> GetINILines(std::string_view, std::string_view) override {
        std::vector<std::string> lines;
        lines.reserve(settings.size());
        for (const auto& [key, text] : settings)
            lines.push_back(std::string(key).append("=").append(text));
        return lines;
    }

    void WriteLog(std::string_view source, std::string_view message) override {
        calls_.Note("WriteLog " + std::string(source) + ": " + std::string(message));
        log.push_back(std::string(source) + ": " + std::string(message));
    }

    std::vector<std::string> GetPlugins() override {
        calls_.Note("GetPlugins");
        return plugins;
    }

    std::string GetAppPath() override { return appPath; }

    std::map<std::string, std::string> settings;  ///< by lower-cased key
    std::vector<std::string> plugins = {"Quillon"};
    std::string appPath = R"(C:\HomeSeer)";
    std::vector<std::string> log;  ///< "source: message"

  private:
    Calls& calls_;
};

}  // namespace quillon::fakes
