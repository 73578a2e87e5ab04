#include "taglib/sound_length.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string_view>

namespace quillon {
namespace {

/// What begins each piece of MPEG sound.
struct FrameHead {
    bool isFirstVersion = false;  ///< MPEG 1, else 2 or 2.5
    bool isMono = false;
    bool hasChecksum = false;
    unsigned layer = 0;      ///< 1 to 3
    double bitRate = 0;      ///< bits a second
    double sampleRate = 0;   ///< samples a second
    std::uint64_t size = 0;  ///< bytes of the whole frame

    double Samples() const {
        if (layer == 1) return 384;
        return layer == 3 && !isFirstVersion ? 576 : 1152;
    }
};

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t HeadSize = 4;

/// kbit a second by layer for MPEG 1, then for layer 1 and for the others of MPEG 2.
constexpr std::array<std::array<std::uint16_t, 15>, 5> Rates{{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
}};

double BitRate(bool isFirstVersion, unsigned layer, unsigned index) {
    const std::size_t row = isFirstVersion ? layer - 1U : layer == 1 ? 3U : 4U;
    return Rates.at(row).at(index) * 1000.0;
}

std::optional<FrameHead> HeadIn(Bytes bytes) {
    constexpr unsigned NoVersion = 1, FirstVersion = 3, OldVersion = 0, NoRate = 3, FreeRate = 0,
                       BadRate = 15, Mono = 3;
    constexpr std::array<double, 3> SampleRates{44100, 48000, 32000};
    if (bytes.size() < HeadSize || bytes[0] != 0xFF || (bytes[1] & 0xE0U) != 0xE0U)
        return std::nullopt;
    const unsigned version = (bytes[1] >> 3U) & 3U, layerBits = (bytes[1] >> 1U) & 3U;
    const unsigned rate = bytes[2] >> 4U, sampleRate = (bytes[2] >> 2U) & 3U;
    const bool isSense = version != NoVersion && layerBits != 0 && rate != FreeRate &&
                         rate != BadRate && sampleRate != NoRate;
    if (!isSense) return std::nullopt;
    FrameHead head{.isFirstVersion = version == FirstVersion,
                   .isMono = (bytes[3] >> 6U) == Mono,
                   .hasChecksum = (bytes[1] & 1U) == 0,
                   .layer = 4 - layerBits};
    head.bitRate = BitRate(head.isFirstVersion, head.layer, rate);
    const double part = head.isFirstVersion ? 1 : version == OldVersion ? 4 : 2;
    head.sampleRate = SampleRates.at(sampleRate) / part;
    const auto padding = (bytes[2] >> 1U) & 1U;
    const double size = head.Samples() / 8 * head.bitRate / head.sampleRate;
    // Layer 1 is made of pieces of four bytes.
    head.size = head.layer == 1 ? (static_cast<std::uint64_t>(size / 4) + padding) * 4
                                : static_cast<std::uint64_t>(size) + padding;
    return head;
}

bool AreOfOneStream(const FrameHead& first, const FrameHead& second) {
    return first.layer == second.layer && first.isFirstVersion == second.isFirstVersion &&
           first.sampleRate == second.sampleRate;
}

std::uint32_t HighFirst(Bytes bytes) {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes.first(4))
        number = (number << 8U) | byte;
    return number;
}

bool Reads(Bytes bytes, std::size_t at, std::string_view text) {
    return bytes.size() >= at + text.size() &&
           std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

/// How many frames follow, as the first one tells, if it does.
std::optional<std::uint32_t> FrameCount(const FrameHead& head, Bytes frame) {
    const std::size_t side = head.isFirstVersion ? (head.isMono ? 17 : 32) : (head.isMono ? 9 : 17);
    constexpr std::size_t VbriAt = 36, VbriCount = 14, XingCount = 8;
    constexpr std::uint8_t HasCount = 1;
    const std::size_t plain = HeadSize + side;
    for (const std::size_t at : {plain, plain + 2}) {
        const bool isThere = Reads(frame, at, "Xing") || Reads(frame, at, "Info");
        if (!isThere || frame.size() < at + XingCount + 4) continue;
        if ((frame[at + XingCount - 1] & HasCount) == 0) return std::nullopt;
        return HighFirst(frame.subspan(at + XingCount));
    }
    if (Reads(frame, VbriAt, "VBRI") && frame.size() >= VbriAt + VbriCount + 4)
        return HighFirst(frame.subspan(VbriAt + VbriCount));
    return std::nullopt;
}

struct FoundFrame {
    FrameHead head;
    std::uint64_t at = 0;
    std::optional<FrameHead> next = {};
};

/// The first frame behind which another one comes, or the end.
std::optional<FoundFrame> FirstFrame(ByteWindow& file, std::uint64_t begin, std::uint64_t end) {
    constexpr std::uint64_t Nearness = std::uint64_t{64} * 1024;
    constexpr std::size_t Piece = 4096 - (HeadSize - 1);
    const std::uint64_t last = std::min(end, begin + Nearness);
    std::array<std::uint8_t, Piece + HeadSize - 1> bytes{};
    for (std::uint64_t at = begin; at + HeadSize <= last; at += Piece) {
        const auto seen = file.At(at, bytes.size());
        std::ranges::copy(seen, bytes.begin());
        const Bytes piece = Bytes(bytes).first(seen.size());
        for (std::size_t i = 0; i + HeadSize <= piece.size() && i < Piece; ++i) {
            const std::uint64_t here = at + i;
            const std::optional<FrameHead> head = HeadIn(piece.subspan(i));
            if (!head || here + HeadSize > end || head->size < HeadSize) continue;
            if (here + head->size >= end) return FoundFrame{.head = *head, .at = here};
            const std::optional<FrameHead> next = HeadIn(file.At(here + head->size, HeadSize));
            if (next && AreOfOneStream(*head, *next))
                return FoundFrame{.head = *head, .at = here, .next = next};
        }
        if (piece.size() < Piece) break;
    }
    return std::nullopt;
}

bool CanBe(double seconds, double bytes) {
    constexpr double Lowest = 8000, Highest = 320000;
    const double rate = bytes * 8 / seconds;
    return rate >= Lowest && rate <= Highest;
}

}  // namespace

std::optional<std::int64_t> SoundSeconds(ByteWindow& file, std::uint64_t begin, std::uint64_t end) {
    constexpr std::size_t EnoughOfFrame = 64;
    const std::optional<FoundFrame> frame = FirstFrame(file, begin, end);
    if (!frame) return std::nullopt;
    const auto bytes = static_cast<double>(end - frame->at);
    const auto count = FrameCount(frame->head, file.At(frame->at, EnoughOfFrame));
    // A frame that only tells of the others may have a rate of its own.
    const FrameHead& usual = count && frame->next ? *frame->next : frame->head;
    double seconds = bytes * 8 / usual.bitRate;
    if (count && *count > 0) {
        const double told = *count * frame->head.Samples() / frame->head.sampleRate;
        if (CanBe(told, bytes)) seconds = told;
    }
    const double whole = std::nearbyint(seconds);
    if (whole < 1 || whole > std::numeric_limits<std::int16_t>::max()) return std::nullopt;
    return static_cast<std::int64_t>(whole);
}

}  // namespace quillon
