#include "tests/support/tagged_file.h"

namespace quillon::support {
namespace {

/// In so many bytes of so many bits, highest first.
std::string Number(std::uint64_t number, unsigned bytes, unsigned bits = 8) {
    std::string text;
    for (unsigned i = bytes; i-- > 0;)
        text += static_cast<char>((number >> (bits * i)) & ((1U << bits) - 1));
    return text;
}

std::string LowFirst(std::uint32_t number) {
    const std::string high = Number(number, 4);
    return {high.rbegin(), high.rend()};
}

constexpr std::size_t SoundFrame = 417;

std::string SoundFrameWith(std::string_view at, std::size_t place) {
    std::string frame("\xFF\xFB\x90\x64");
    frame.resize(SoundFrame, '\0');
    return frame.replace(place, at.size(), at);
}

}  // namespace

std::string FrameBytes(unsigned version, const std::string& name, const std::string& content,
                       unsigned flags) {
    if (version == 2) return name + Number(content.size(), 3) + content;
    return name + Number(content.size(), 4, version == 4 ? 7 : 8) + Number(flags, 2) + content;
}

std::string TextContent(std::string_view text, char encoding) {
    return encoding + std::string(text);
}

std::string CommentContent(std::string_view text, std::string_view about) {
    return std::string(1, '\0') + "eng" + std::string(about) + '\0' + std::string(text);
}

std::string FramesTag(unsigned version, const std::string& frames, std::size_t padding,
                      unsigned flags) {
    return "ID3" + Number(version, 1) + Number(0, 1) + Number(flags, 1) +
           Number(frames.size() + padding, 4, 7) + frames + std::string(padding, '\0');
}

std::string Unsynchronised(std::string_view bytes) {
    std::string strewn;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        strewn += bytes[i];
        if (bytes[i] != '\xFF') continue;
        const auto next = i + 1 < bytes.size() ? static_cast<unsigned char>(bytes[i + 1]) : 0U;
        if (next == 0 || next >= 0xE0) strewn += '\0';
    }
    return strewn;
}

std::string ApeTag(std::initializer_list<std::pair<std::string, std::string>> items) {
    constexpr std::uint32_t FooterSize = 32, IsHeader = 0xA0000000, HasHeader = 0x80000000;
    std::string content;
    for (const auto& [key, value] : items)
        content +=
            LowFirst(static_cast<std::uint32_t>(value.size())) + LowFirst(0) + key + '\0' + value;
    const auto size = static_cast<std::uint32_t>(content.size()) + FooterSize;
    const auto mark = [&](std::uint32_t flags) {
        return "APETAGEX" + LowFirst(2000) + LowFirst(size) +
               LowFirst(static_cast<std::uint32_t>(items.size())) + LowFirst(flags) +
               std::string(8, '\0');
    };
    return mark(IsHeader) + content + mark(HasHeader);
}

std::string Sound(std::size_t frames) {
    std::string sound;
    for (std::size_t i = 0; i < frames; ++i)
        sound += SoundFrameWith("", 0);
    return sound;
}

std::string CountedSound(std::string_view header, std::size_t frames, std::uint32_t told) {
    constexpr std::size_t XingAt = 36;
    const std::string count = Number(told, 4);
    if (header == "VBRI")
        return SoundFrameWith("VBRI" + std::string(10, '\0') + count, XingAt) + Sound(frames);
    return SoundFrameWith(std::string(header) + Number(1, 4) + count, XingAt) + Sound(frames);
}

}  // namespace quillon::support
