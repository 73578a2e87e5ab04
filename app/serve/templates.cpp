#include "app/serve/templates.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "picker/html.h"
#include "platform/ansi.h"

namespace quillon {
namespace {

constexpr auto Templates = std::to_array<std::pair<std::string_view, std::string_view>>({
#include "app/serve/template_rows.inc"
});

template <typename Pairs>
std::string_view Find(const Pairs& pairs, std::string_view name) {
    const auto* const found =
        std::ranges::find(pairs, name, [](const auto& pair) { return pair.first; });
    if (found == std::ranges::end(pairs)) throw std::out_of_range(std::string(name));
    return found->second;
}

}  // namespace

std::string_view TemplateText(std::string_view name) {
    return Find(Templates, name);
}

std::string FillTemplate(std::string_view name, TemplateValues values) {
    std::string_view rest = TemplateText(name);
    std::string filled;
    for (std::size_t start = rest.find("{{"); start != std::string_view::npos;
         start = rest.find("{{")) {
        filled += rest.substr(0, start);
        const bool isMarkup = rest.substr(start).starts_with("{{{");
        const std::string_view close = isMarkup ? "}}}" : "}}";
        const std::size_t nameStart = start + close.size();
        const std::size_t end = rest.find(close, nameStart);
        if (end == std::string_view::npos) throw std::out_of_range(std::string(name));
        const std::string_view value = Find(values, rest.substr(nameStart, end - nameStart));
        filled += isMarkup ? std::string(value) : HtmlText(ToValidUtf8(value));
        rest.remove_prefix(end + close.size());
    }
    return filled.append(rest);
}

std::string PageText(std::string_view title, std::string_view content) {
    return FillTemplate("page.html", {{"title", title}, {"content", content}});
}

}  // namespace quillon
