#include "picker/html.h"

#include <array>

#include "platform/utf8.h"

namespace quillon {
namespace {

constexpr char32_t ReplacementCharacter = 0xFFFD;

bool IsControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

/// Whether a browser refuses the character even by its number.
bool IsNoCharacter(char32_t code) {
    return (code & 0xFFFEU) == 0xFFFE || (code >= 0xFDD0 && code <= 0xFDEF);
}

bool MustBeReferred(char32_t code) {
    return code >= 0x80 ||
           std::string_view("&<>\"'`").find(static_cast<char>(code)) != std::string_view::npos;
}

bool IsUnreserved(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') ||
           std::string_view("-._~").find(character) != std::string_view::npos;
}

std::string PercentEncoded(std::string_view text, std::string_view alsoKept) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        if (IsUnreserved(character) || alsoKept.find(character) != std::string_view::npos) {
            encoded += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += Digits[byte / 16U];
        encoded += Digits[byte % 16U];
    }
    return encoded;
}

}  // namespace

std::string HtmlText(std::string_view text) {
    std::string html;
    html.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const Utf8Character next = DecodeUtf8(text, position);
        position += next.length;
        const bool showable = next.wellFormed && !IsNoCharacter(next.code);
        const char32_t code = showable ? next.code : ReplacementCharacter;
        if (IsControl(code)) {
            html += ' ';
        } else if (MustBeReferred(code)) {
            html += "&#" + std::to_string(static_cast<unsigned long>(code)) + ';';
        } else {
            html += static_cast<char>(code);
        }
    }
    return html;
}

std::string UrlPath(std::string_view path) {
    return PercentEncoded(path, "/");
}

std::string UrlValue(std::string_view value) {
    return PercentEncoded(value, "");
}

std::string PageHead(std::string_view title) {
    const std::string header = "Response.Write CustomHeader(\"" + std::string(title) + "\")";
    const std::array<std::string_view, 7> lines = {
        R"(<!--#include virtual="/includes/style.asp"-->)",
        R"(<!--#include virtual="/includes/header.asp"-->)",
        "<%",
        R"(If Request.ServerVariables("AUTH_USER") = "guest" )"
        R"(Then Response.Redirect("/unauthorized.asp"))",
        header,
        "%>",
        "<br><br>",
    };
    std::string head;
    for (const std::string_view line : lines) {
        head += line;
        head += Eol;
    }
    return head;
}

std::string PageFoot() {
    return std::string(Eol) + "<%Response.Write CustomFooter()%>";
}

}  // namespace quillon
