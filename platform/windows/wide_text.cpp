#include "platform/windows/wide_text.h"

#include <vector>

#include "platform/utf8.h"
#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

constexpr std::string_view Mark = "//?/";
constexpr std::string_view ShareMark = "//?/UNC/";

bool IsHalf(char32_t code) {
    return code >= 0xD800 && code < 0xE000;
}

/// Three bytes, which AppendUtf8() would not write.
void AppendHalf(std::string& text, char32_t code) {
    text += static_cast<char>(0xE0U | (code >> 12U));
    text += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    text += static_cast<char>(0x80U | (code & 0x3FU));
}

std::string WithSlashes(std::string_view path) {
    std::string text(path);
    for (char& letter : text)
        if (letter == '\\') letter = '/';
    return text;
}

bool HasDrive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':';
}

/// The whole path of one that is relative to the process's folder, or to a drive's.
std::string WholePath(const std::string& path) {
    const bool isWhole = path.starts_with("//") || (HasDrive(path) && path.size() == 2) ||
                         (HasDrive(path) && path[2] == '/');
    if (isWhole) return path;
    const std::wstring wide = WideText(path);
    std::wstring whole(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    if (whole.empty()) return path;
    whole.resize(
        GetFullPathNameW(wide.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    return WithSlashes(NarrowText(whole));
}

/// The names of a path without those that lead nowhere else; the system does not look at them where
/// a path is marked.
std::string WithoutDots(std::string_view names) {
    std::vector<std::string_view> kept;
    while (!names.empty()) {
        const std::size_t end = std::min(names.find('/'), names.size());
        const std::string_view name = names.substr(0, end);
        if (name == ".." && !kept.empty()) kept.pop_back();
        if (!name.empty() && name != "." && name != "..") kept.push_back(name);
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    std::string path;
    for (const std::string_view name : kept)
        path.append("\\").append(name);
    return path;
}

}  // namespace

std::wstring WideText(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        at += character.length;
        char32_t code = character.code;
        if (!character.wellFormed && !IsHalf(code)) code = 0xFFFD;
        if (code > 0xFFFF) {
            wide += static_cast<wchar_t>(0xD800U + ((code - 0x10000U) >> 10U));
            wide += static_cast<wchar_t>(0xDC00U + ((code - 0x10000U) & 0x3FFU));
        } else {
            wide += static_cast<wchar_t>(code);
        }
    }
    return wide;
}

std::string NarrowText(std::wstring_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t code = text[at];
        const bool leads = code >= 0xD800 && code < 0xDC00 && at + 1 < text.size() &&
                           text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000;
        if (leads) {
            ++at;
            code = 0x10000U + ((code - 0xD800U) << 10U) + (text[at] - 0xDC00U);
        }
        if (IsHalf(code)) {
            AppendHalf(narrow, code);
        } else {
            AppendUtf8(narrow, code);
        }
    }
    return narrow;
}

std::wstring WidePath(std::string_view localPath) {
    const std::string path = WithSlashes(localPath);
    if (path.starts_with(Mark)) {
        std::wstring marked = WideText(path);
        for (wchar_t& letter : marked)
            if (letter == L'/') letter = L'\\';
        return marked;
    }
    const std::string whole = WholePath(path);
    if (whole.starts_with("//")) return WideText(R"(\\?\UNC)" + WithoutDots(whole.substr(2)));
    if (!HasDrive(whole)) return WideText(whole);
    const std::string names = WithoutDots(whole.substr(2));
    return WideText(R"(\\?\)" + whole.substr(0, 2) + (names.empty() ? "\\" : names));
}

std::string LocalPathOf(std::wstring_view systemPath) {
    std::string path = WithSlashes(NarrowText(systemPath));
    if (path.starts_with(ShareMark)) return "//" + path.substr(ShareMark.size());
    if (path.starts_with(Mark)) path.erase(0, Mark.size());
    return path;
}

}  // namespace quillon
