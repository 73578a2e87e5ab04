// Playlist lines of any bytes: what is taken for an entry is part of its line, and an entry that
// the tool writes is read back as it was.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/ansi.h"
#include "playlists/m3u.h"
#include "playlists/pla_line.h"

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

void TryLine(const std::string& line) {
    const auto two = quillon::FirstTwoFields(line);
    const auto exact = quillon::ExactlyTwoFields(line);
    if (two) {
        const std::string start = std::string(two->cdjid) + ' ' + std::string(two->index);
        Require(line.starts_with(start));
        Require(two->index.find(' ') == std::string_view::npos);
    } else {
        Require(line.find(' ') == std::string::npos);
    }
    if (!exact) return;
    Require(two && two->cdjid == exact->cdjid && two->index == exact->index);
    Require(!exact->cdjid.empty() && !exact->index.empty());
    const auto index = quillon::WholeIndex(exact->index);
    if (!index) return;
    const std::string written = quillon::PlaLine(exact->cdjid, std::int64_t{*index} + 1);
    const auto again = quillon::ExactlyTwoFields(written);
    Require(again && again->cdjid == exact->cdjid && quillon::WholeIndex(again->index) == index);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    for (std::size_t begin = 0; begin < bytes.size();) {
        const std::size_t end = bytes.find('\n', begin);
        TryLine(quillon::AnsiToUtf8(bytes.substr(begin, end - begin)));
        begin = end == std::string_view::npos ? bytes.size() : end + 1;
    }
    const std::string name = quillon::M3uName(bytes);
    Require(quillon::M3uName(name) == name);
    return 0;
}
