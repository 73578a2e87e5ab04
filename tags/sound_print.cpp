#include "tags/sound_print.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/content_hash.h"
#include "tags/sound_bytes.h"

namespace quillon {
namespace {

constexpr std::uint64_t SampleSize = std::uint64_t{16} * 1024;

class Hash {
  public:
    void Add(std::span<const std::uint8_t> bytes) {
        value_ = ContentHash({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, value_);
    }
    void AddNumber(std::uint64_t number) {
        std::array<std::uint8_t, 8> bytes{};
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<std::uint8_t>(number >> (8U * i));
        Add(bytes);
    }
    std::uint64_t Value() const { return value_; }

  private:
    std::uint64_t value_ = HashOfNothing;
};

/// Somebody may be writing the file; then what was read is of no file at all.
bool IsStill(Files& files, const std::string& path, const FileState& state) {
    const FileEntry file = files.GetFile(path);
    return StateOf(file.size, file.modified) == state;
}

/// The hash of what visit(sound, hash) adds to it.
template <typename Visit>
std::optional<SoundPrint> HashOf(SoundBytes& sound, const FileState& state, Visit visit) {
    if (sound.FileSize() != state.size) return std::nullopt;
    Hash hash;
    hash.AddNumber(sound.Size());
    visit(hash);
    return SoundPrint{.size = sound.Size(), .samples = hash.Value()};
}

std::optional<SoundPrint> SamplesOf(SoundBytes sound, const FileState& state) {
    return HashOf(sound, state, [&sound](Hash& hash) {
        const std::uint64_t piece = std::min(SampleSize, sound.Size());
        const std::uint64_t last = sound.Size() - piece;
        for (const std::uint64_t offset : std::array<std::uint64_t, 3>{0, last / 2, last})
            hash.Add(sound.Read(offset, static_cast<std::size_t>(piece)));
    });
}

std::optional<SoundPrint> WholeOf(SoundBytes sound, const FileState& state) {
    return HashOf(sound, state, [&sound](Hash& hash) {
        for (std::uint64_t offset = 0; offset < sound.Size(); offset += SampleSize) {
            const std::uint64_t piece = std::min(SampleSize, sound.Size() - offset);
            hash.Add(sound.Read(offset, static_cast<std::size_t>(piece)));
        }
    });
}

std::optional<SoundPrint> IfStill(Files& files, const std::string& path, const FileState& state,
                                  std::optional<SoundPrint> print) {
    if (!print || !IsStill(files, path, state)) return std::nullopt;
    return print;
}

}  // namespace

FileState StateOf(std::uint64_t size, DateTime modified) {
    constexpr double SecondsADay = 24 * 60 * 60;
    return {.size = size, .time = std::llround(modified.days * SecondsADay)};
}

std::optional<SoundPrint> ReadSoundPrint(Files& files, const std::string& path,
                                         const FileState& state) {
    return IfStill(files, path, state, SamplesOf(SoundBytes(files, path), state));
}

std::optional<SoundPrint> ReadSoundPrint(Files& files, BinaryReader& stream,
                                         const std::string& path, const FileState& state) {
    return IfStill(files, path, state, SamplesOf(SoundBytes(stream, path), state));
}

std::optional<std::uint64_t> ReadWholeSound(Files& files, const std::string& path,
                                            const FileState& state) {
    const auto whole = IfStill(files, path, state, WholeOf(SoundBytes(files, path), state));
    return whole ? std::optional(whole->samples) : std::nullopt;
}

}  // namespace quillon
