#include "app/serve/web_address.h"

#include <algorithm>
#include <array>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"

namespace quillon {
namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// The byte of an escape that starts at `position`.
std::optional<char> EscapedByte(std::string_view text, std::size_t position) {
    if (position + 2 >= text.size()) return std::nullopt;
    const int high = HexDigit(text[position + 1]), low = HexDigit(text[position + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    return static_cast<char>(high * 16 + low);
}

/// Nothing for a text with an invalid escape.
std::optional<std::string> DecodePath(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        const auto byte = EscapedByte(text, i);
        if (!byte) return std::nullopt;
        decoded += *byte;
        i += 2;
    }
    return decoded;
}

std::string DecodeQuery(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = text[i] == '%' ? EscapedByte(text, i) : std::nullopt;
        decoded += byte ? *byte : text[i] == '+' ? ' ' : text[i];
        if (byte) i += 2;
    }
    return ToValidUtf8(decoded);
}

bool IsServedName(std::string_view name) {
    return IsWindowsName(name) && !name.starts_with('.');
}

}  // namespace

QueryValues::QueryValues(std::string_view query) {
    while (!query.empty()) {
        const std::string_view pair = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(query.size(), pair.size() + 1));
        if (pair.empty()) continue;
        const std::size_t equals = pair.find('=');
        const std::string name = LowerCase(DecodeQuery(pair.substr(0, equals)));
        const std::string value =
            equals == std::string_view::npos ? "" : DecodeQuery(pair.substr(equals + 1));
        const auto [entry, isNew] = values_.emplace(name, value);
        if (!isNew) entry->second += ", " + value;
    }
}

std::string QueryValues::Get(std::string_view name) const {
    const auto found = values_.find(LowerCase(name));
    return found == values_.end() ? "" : found->second;
}

bool QueryValues::Has(std::string_view name) const {
    return values_.contains(LowerCase(name));
}

std::optional<WebAddress> ParseWebAddress(std::string_view target) {
    const std::size_t queryStart = target.find('?');
    const auto path = DecodePath(target.substr(0, queryStart));
    if (!path || !path->starts_with('/')) return std::nullopt;

    WebAddress address;
    if (path->size() > 1) address.names = Split(ToValidUtf8(path->substr(1)), "/");
    if (!std::ranges::all_of(address.names, IsServedName)) return std::nullopt;
    if (queryStart != std::string_view::npos)
        address.query = QueryValues(target.substr(queryStart + 1));
    return address;
}

bool IsLoopbackHost(std::string_view host) {
    constexpr std::array<std::string_view, 3> Names{"localhost", "127.0.0.1", "[::1]"};
    const auto isName = [host](std::string_view name) {
        if (!EqualIgnoringCase(host.substr(0, name.size()), name)) return false;
        const std::string_view port = host.substr(name.size());
        return port.empty() || (port.size() > 1 && port.front() == ':' &&
                                port.find_first_not_of("0123456789", 1) == std::string_view::npos);
    };
    return std::ranges::any_of(Names, isName);
}

}  // namespace quillon
