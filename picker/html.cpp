#include "picker/html.h"

#include <array>

#include "platform/utf8.h"

namespace quillon {
namespace {

constexpr char32_t ReplacementCharacter = 0xFFFD;
constexpr std::string_view HexDigits = "0123456789ABCDEF";

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

/// A character by the one or two 16-bit numbers that scripts know it by.
void AppendUtf16Escapes(std::string& text, char32_t code) {
    const auto append = [&text](char32_t unit) {
        text += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4)
            text += HexDigits[unit >> static_cast<unsigned>(shift) & 0xFU];
    };
    constexpr char32_t FirstOfTwo = 0x10000, HighHalf = 0xD800, LowHalf = 0xDC00;
    if (code < FirstOfTwo) return append(code);
    append(HighHalf + ((code - FirstOfTwo) >> 10U));
    append(LowHalf + ((code - FirstOfTwo) & 0x3FFU));
}

bool IsUnreserved(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') ||
           std::string_view("-._~").find(character) != std::string_view::npos;
}

std::string PercentEncoded(std::string_view text, std::string_view alsoKept) {
    std::string encoded;
    for (const char character : text) {
        if (IsUnreserved(character) || alsoKept.find(character) != std::string_view::npos) {
            encoded += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += HexDigits[byte / 16U];
        encoded += HexDigits[byte % 16U];
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

std::string ScriptText(std::string_view text) {
    std::string script = "\"";
    for (std::size_t position = 0; position < text.size();) {
        const Utf8Character next = DecodeUtf8(text, position);
        position += next.length;
        const char32_t code = next.wellFormed ? next.code : ReplacementCharacter;
        if (IsControl(code)) {
            script += ' ';
        } else if (MustBeReferred(code) || code == '\\' || code == '%') {
            AppendUtf16Escapes(script, code);
        } else {
            script += static_cast<char>(code);
        }
    }
    return script + '"';
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
