#include "app/serve/html.h"

#include "platform/ansi.h"
#include "platform/utf8.h"

namespace quillon {
namespace {

void AppendEscaped(std::string& html, char32_t code) {
    const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const bool isPlain = code < 0x7F && std::string_view("&<>\"'").find(static_cast<char>(code)) ==
                                            std::string_view::npos;
    if (isControl) {
        html += ' ';
    } else if (isPlain) {
        html += static_cast<char>(code);
    } else {
        html += "&#" + std::to_string(static_cast<std::uint32_t>(code)) + ';';
    }
}

}  // namespace

std::string EscapeHtml(std::string_view text) {
    const std::string valid = ToValidUtf8(text);
    std::string html;
    for (std::size_t position = 0; position < valid.size();) {
        const Utf8Character character = DecodeUtf8(valid, position);
        AppendEscaped(html, character.code);
        position += character.length;
    }
    return html;
}

}  // namespace quillon
