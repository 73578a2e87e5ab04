#include "platform/windows_path.h"

#include <algorithm>

#include "platform/ansi.h"
#include "platform/failure.h"

namespace quillon {
namespace {

bool IsSeparator(char character) {
    return character == '\\' || character == '/';
}

bool IsLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

/// Takes the next component off the text; empty when there is none.
std::string_view TakeComponent(std::string_view& text) {
    const auto* const begin = std::find_if_not(text.begin(), text.end(), IsSeparator);
    const auto* const end = std::find_if(begin, text.end(), IsSeparator);
    text = {end, text.end()};
    return {begin, end};
}

bool IsShare(std::string_view path) {
    return path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
}

bool IsDrive(std::string_view path) {
    return path.size() >= 2 && IsLetter(path[0]) && path[1] == ':' &&
           (path.size() == 2 || IsSeparator(path[2]));
}

/// Refuses a component that Windows cannot hold.
std::string_view Checked(std::string_view component, std::string_view path) {
    if (!IsWindowsName(component)) {
        throw Failure(FailureNumber::BadFileName, ToValidUtf8(path));
    }
    return component;
}

[[noreturn]] void NoSuchRoot(std::string_view path) {
    throw Failure(FailureNumber::PathNotFound, ToValidUtf8(path));
}

/// Takes the root off the text.
std::string TakeRoot(std::string_view& text, std::string_view path) {
    if (IsDrive(text)) {
        std::string root(text.substr(0, 2));
        text.remove_prefix(2);
        return root;
    }
    if (!IsShare(text)) NoSuchRoot(path);
    const std::string_view server = TakeComponent(text);
    const std::string_view share = TakeComponent(text);
    if (server.empty() || share.empty()) NoSuchRoot(path);
    std::string root = "\\\\";
    root += Checked(server, path);
    root += '\\';
    root += Checked(share, path);
    return root;
}

}  // namespace

std::string_view ParentFolder(std::string_view path) {
    const std::size_t slash = path.rfind('\\');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

std::string WindowsPath::Text() const {
    std::string text = root + '\\' + rest;
    std::replace(text.begin() + static_cast<std::ptrdiff_t>(root.size()), text.end(), '/', '\\');
    return text;
}

std::string WindowsPath::Child(std::string_view name) const {
    std::string text = Text();
    if (!rest.empty()) text += '\\';
    text += name;
    return text;
}

WindowsPath ParseWindowsPath(std::string_view path) {
    WindowsPath parsed;
    std::string_view text = path;
    parsed.root = TakeRoot(text, path);
    parsed.rest.reserve(text.size());
    while (true) {
        const std::string_view component = TakeComponent(text);
        if (component.empty()) return parsed;
        if (!parsed.rest.empty()) parsed.rest += '/';
        parsed.rest += Checked(component, path);
    }
}

std::optional<std::string> ParseRoot(std::string_view text) {
    const bool isLetter = text.size() == 1 && IsLetter(text[0]);
    try {
        const WindowsPath path = ParseWindowsPath(isLetter ? std::string(text) + ':' : text);
        if (!path.rest.empty()) return std::nullopt;
        return path.root;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

}  // namespace quillon
