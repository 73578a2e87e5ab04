#include "app/views/window_module.h"

#include <algorithm>
#include <dlfcn.h>
#include <fmt/format.h>
#include <optional>
#include <system_error>

#include "app/version.h"
#include "app/views/display_trial.h"
#include "app/window/module_place.h"
#include "app/window/window_maker.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// What the module exports, or why there is none.
struct Module {
    WindowMaker maker = nullptr;
    MessageTeller teller = nullptr;
    std::string whyNot;
};

Module LoadModule(const fs::path& file) {
    // Never unloaded: the desktop's libraries leave things behind that point into them.
    void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr) {
        const char* const reason = dlerror();
        return {nullptr, nullptr,
                fmt::format("the desktop window cannot be loaded ({}); install the package "
                            "quillon-window or what it needs",
                            reason == nullptr ? file.string() : reason)};
    }
    void* const maker = dlsym(module, WindowMakerName);
    if (maker == nullptr)
        return {nullptr, nullptr,
                fmt::format("{} is not this program's desktop window", file.string())};
    void* const teller = dlsym(module, MessageTellerName);
    return {reinterpret_cast<WindowMaker>(maker), reinterpret_cast<MessageTeller>(teller), ""};
}

/// The module from the first place that has it.
std::optional<fs::path> FindModule(const std::vector<fs::path>& places) {
    const auto file = std::ranges::find_if(places, [](const fs::path& place) {
        std::error_code error;
        return fs::exists(place, error);
    });
    return file == places.end() ? std::nullopt : std::optional(*file);
}

std::unique_ptr<Window> Make(WindowMaker maker) {
    return std::unique_ptr<Window>(maker(std::string(ProgramVersion).c_str(), sizeof(FormState)));
}

}  // namespace

std::vector<fs::path> WindowModulePlaces() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) return {};
    const fs::path folder = program.parent_path();
    return {folder / WindowModuleName, folder / WindowModuleFolder / WindowModuleName};
}

WindowOffer OpenWindow(const std::vector<fs::path>& places) {
    const std::optional<fs::path> file = FindModule(places);
    if (!file) {
        return {nullptr,
                "there is no desktop window in this installation; install the package "
                "quillon-window, or build the program where Qt 6 is installed"};
    }
    const Module module = LoadModule(*file);
    if (module.maker == nullptr) return {nullptr, module.whyNot};
    if (std::string reason = WhyNoDisplay([&module] { Make(module.maker); }); !reason.empty())
        return {nullptr, std::move(reason)};
    std::unique_ptr<Window> window = Make(module.maker);
    if (window != nullptr) return {std::move(window), ""};
    return {nullptr, fmt::format("{} belongs to another build of this program", file->string())};
}

void TellOnDesktop(const std::string& message, const std::vector<fs::path>& places) {
    const std::optional<fs::path> file = FindModule(places);
    if (!file) return;
    const Module module = LoadModule(*file);
    if (module.teller == nullptr || !WhyNoDisplay([&module] { Make(module.maker); }).empty())
        return;
    module.teller(message.c_str());
}

}  // namespace quillon
