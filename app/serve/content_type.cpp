#include "app/serve/content_type.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "platform/basic_text.h"

namespace quillon {
namespace {

// Pages that the tool writes are in the ANSI code page; other ones say themselves what they are in.
constexpr auto Types = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"asp", "text/html; charset=windows-1252"},
    {"bmp", "image/bmp"},
    {"css", "text/css"},
    {"gif", "image/gif"},
    {"htm", "text/html"},
    {"html", "text/html"},
    {"ico", "image/x-icon"},
    {"jpeg", "image/jpeg"},
    {"jpg", "image/jpeg"},
    {"js", "text/javascript"},
    {"json", "application/json"},
    {"m3u", "audio/x-mpegurl"},
    {"mp3", "audio/mpeg"},
    {"png", "image/png"},
    {"svg", "image/svg+xml"},
    {"txt", "text/plain"},
    {"webp", "image/webp"},
    {"xml", "text/xml"},
});

std::string Extension(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? "" : LowerCase(name.substr(dot + 1));
}

}  // namespace

std::string_view ContentType(std::string_view name) {
    const std::string extension = Extension(name);
    const auto* const found =
        std::ranges::find(Types, extension, [](const auto& type) { return type.first; });
    return found == Types.end() ? "application/octet-stream" : found->second;
}

bool IsServerPage(std::string_view name) {
    return Extension(name) == "asp";
}

}  // namespace quillon
