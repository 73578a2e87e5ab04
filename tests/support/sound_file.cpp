#include "tests/support/sound_file.h"

namespace quillon::support {
namespace {

std::string Padded(std::string text, std::size_t length) {
    text.resize(length, '\0');
    return text;
}

}  // namespace

std::string TagBytes(const RawTag& tag) {
    std::string bytes = Padded(tag.marker, 3) + Padded(tag.song, 30) + Padded(tag.artist, 30) +
                        Padded(tag.album, 30) + Padded(tag.year, 4);
    if (tag.track > 0) {
        bytes += Padded(tag.comment, 28) + '\0' + static_cast<char>(tag.track);
    } else {
        bytes += Padded(tag.comment, 30);
    }
    return bytes + static_cast<char>(tag.genre);
}

std::string SoundFile(const RawTag& tag) {
    return UntaggedSoundFile() + TagBytes(tag);
}

std::string UntaggedSoundFile() {
    // The head of an MPEG-1 Layer III frame of 128 kbit/s at 44.1 kHz; its 417 bytes hold silence.
    constexpr std::size_t FrameSize = 417;
    return Padded("\xFF\xFB\x90\x64", FrameSize);
}

}  // namespace quillon::support
