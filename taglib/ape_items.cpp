#include "taglib/ape_items.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "taglib/field_text.h"

namespace quillon {
namespace {

constexpr std::uint64_t FooterSize = 32;
constexpr std::string_view Mark = "APETAGEX";
constexpr std::size_t MostItems = 500;

std::uint64_t LowFirst(std::span<const std::uint8_t> bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        number = (number << 8U) | bytes[i];
    return number;
}

constexpr std::array<std::pair<std::string_view, std::string Tag::*>, 8> Items{
    {{"Title", &Tag::song},
     {"Artist", &Tag::artist},
     {"Album", &Tag::album},
     {"Year", &Tag::year},
     {"Comment", &Tag::comment},
     {"Track", &Tag::track},
     {"Disc", &Tag::disc},
     {"Genre", &Tag::genre}}};

std::string Tag::* FieldOfItem(std::string_view key) {
    const auto found = std::ranges::find_if(
        Items, [key](const auto& item) { return EqualIgnoringCase(item.first, key); });
    return found == Items.end() ? nullptr : found->second;
}

/// Names each item that is a text and not too long, with a function that reads it.
template <typename Visit>
void VisitTexts(ByteWindow& file, std::uint64_t begin, std::uint64_t end, Visit visit) {
    constexpr std::size_t HeadOfItem = 8, LongestKey = 255;
    constexpr std::uint32_t KindMask = 0x06;
    const auto mark = file.At(begin, Mark.size());
    if (std::equal(mark.begin(), mark.end(), Mark.begin(), Mark.end())) begin += FooterSize;
    end -= FooterSize;
    for (std::size_t count = 0; count < MostItems && begin + HeadOfItem < end; ++count) {
        const auto head = file.At(begin, HeadOfItem + LongestKey + 1);
        if (head.size() < HeadOfItem) break;
        const std::uint64_t size = LowFirst(head.first(4));
        const bool isText = (head[4] & KindMask) == 0;
        const auto rest = head.subspan(HeadOfItem);
        const auto keyEnd = std::ranges::find(rest, 0);
        if (keyEnd == rest.end()) break;
        const std::string key(rest.begin(), keyEnd);
        begin += HeadOfItem + key.size() + 1;
        if (size > end || begin > end - size) break;
        const auto read = [&] {
            const auto bytes = file.At(begin, static_cast<std::size_t>(size));
            const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
            return ToValidUtf8(text.substr(0, text.find('\0')));
        };
        if (isText && size <= LongestText) visit(key, read);
        begin += size;
    }
}

}  // namespace

std::uint64_t ApeSize(std::span<const std::uint8_t> last, std::uint64_t end) {
    constexpr std::size_t SizeAt = 12, FlagsAt = 23;
    constexpr std::uint8_t HasHeader = 0x80;
    if (last.size() < FooterSize) return 0;
    const auto footer = last.last(FooterSize);
    if (!std::equal(Mark.begin(), Mark.end(), footer.begin())) return 0;
    std::uint64_t size = LowFirst(footer.subspan(SizeAt, 4));
    if (size < FooterSize) return 0;
    if ((footer[FlagsAt] & HasHeader) != 0) size += FooterSize;
    return size > end ? 0 : size;
}

Tag ReadApe(ByteWindow& file, std::uint64_t begin, std::uint64_t end) {
    Tag tag;
    VisitTexts(file, begin, end, [&tag](const std::string& key, const auto& read) {
        std::string Tag::* const field = FieldOfItem(key);
        if (field != nullptr && (tag.*field).empty()) tag.*field = FieldValueOf(field, read());
    });
    MarkIfAny(tag);
    return tag;
}

std::string ApeText(ByteWindow& file, std::uint64_t begin, std::uint64_t end,
                    std::string_view wanted) {
    std::string text;
    VisitTexts(file, begin, end, [&](const std::string& key, const auto& read) {
        if (text.empty() && EqualIgnoringCase(key, wanted)) text = read();
    });
    return std::string(Trim(text));
}

}  // namespace quillon
