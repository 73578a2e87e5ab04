#include "app/views/window_module.h"

#include <algorithm>
#include <dlfcn.h>
#include <fmt/format.h>
#include <system_error>

#include "app/version.h"
#include "app/views/display_trial.h"
#include "app/window/module_place.h"
#include "app/window/window_maker.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// The maker inside the module, or why there is none.
struct FoundMaker {
    WindowMaker maker = nullptr;
    std::string whyNot;
};

FoundMaker LoadModule(const fs::path& file) {
    // Never unloaded: the desktop's libraries leave things behind that point into them.
    void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr) {
        const char* const reason = dlerror();
        return {nullptr, fmt::format("the desktop window cannot be loaded ({}); install the "
                                     "package quillon-window or what it needs",
                                     reason == nullptr ? file.string() : reason)};
    }
    void* const maker = dlsym(module, WindowMakerName);
    if (maker == nullptr)
        return {nullptr, fmt::format("{} is not this program's desktop window", file.string())};
    return {reinterpret_cast<WindowMaker>(maker), ""};
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
    const auto file = std::find_if(places.begin(), places.end(), [](const fs::path& place) {
        std::error_code error;
        return fs::exists(place, error);
    });
    if (file == places.end()) {
        return {nullptr,
                "there is no desktop window in this installation; install the package "
                "quillon-window, or build the program where Qt 6 is installed"};
    }
    const auto [maker, notLoaded] = LoadModule(*file);
    if (maker == nullptr) return {nullptr, notLoaded};
    if (std::string reason = WhyNoDisplay([maker = maker] { Make(maker); }); !reason.empty())
        return {nullptr, std::move(reason)};
    std::unique_ptr<Window> window = Make(maker);
    if (window != nullptr) return {std::move(window), ""};
    return {nullptr, fmt::format("{} belongs to another build of this program", file->string())};
}

}  // namespace quillon
