// Requests and pages of any bytes. The first line is a request's target, the rest a server page: no
// name that gets through leads out of a folder, every value is text, and a page always comes to an
// end.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "app/serve/asp_page.h"
#include "app/serve/web_address.h"
#include "platform/ansi.h"

namespace {

bool StaysInside(std::string_view name) {
    return !name.empty() && name.front() != '.' && quillon::IsValidUtf8(name) &&
           name.find_first_of(std::string_view("/\\:\0", 4)) == std::string_view::npos;
}

void AskFor(std::string_view target) {
    const auto address = quillon::ParseWebAddress(target);
    if (!address) return;
    if (!std::ranges::all_of(address->names, StaysInside)) std::abort();
    for (const char* const name : {"ClientAction", "CDJID", "ref", "filename"}) {
        if (!quillon::IsValidUtf8(address->query.Get(name))) std::abort();
    }
}

void Evaluate(std::string_view page) {
    const quillon::AspServices services{
        .authUser = "guest",
        .include = [](std::string_view path) { return std::optional(std::string(path)); },
        .customHeader = [](std::string_view title) { return std::string(title); },
        .customFooter = [] { return std::string(); },
        .notRun = ""};
    // Nothing here gives more than it takes.
    if (quillon::EvaluateAsp(page, services).html.size() > page.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(bytes.find('\n'), bytes.size());
    AskFor(bytes.substr(0, line));
    quillon::IsLoopbackHost(bytes.substr(0, line));
    Evaluate(bytes.substr(line));
    return 0;
}
