#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include "jet/storage/format/utf16.h"
#include "jet/storage/format/values.h"
#include "jet/storage/index/index_key.h"
#include "jet/storage/index/sort_table.h"

namespace jet::storage {

namespace {

constexpr std::uint8_t SectionEnd = 0x01;
constexpr std::uint8_t NoAccent = 0x02;

void AppendBigEndian(Bytes& bytes, std::uint32_t value, unsigned size) {
    while (size-- > 0)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * size)));
}

/// The second section: the accent of each unit that is a letter, up to the last one that has one.
/// A ligature has one place here although it is two letters.
class AccentSection {
  public:
    void Append(const SortUnit& unit, std::size_t unitsBefore) {
        if (unit.accentSize == 0 && unit.modifier == 0) return;
        for (; covered_ < unitsBefore; ++covered_)
            bytes_.push_back(NoAccent);
        if (unit.accentSize != 0) {
            AppendBigEndian(bytes_, unit.accentBytes, unit.accentSize);
            ++covered_;
        }
        if (unit.modifier == 0) return;
        if (bytes_.empty()) bytes_.push_back(0);
        bytes_.back() = static_cast<std::uint8_t>(bytes_.back() + unit.modifier);
    }

    void AppendTo(Bytes& key) const {
        auto end = bytes_.end();
        while (end != bytes_.begin() && *(end - 1) <= NoAccent)
            --end;
        key.insert(key.end(), bytes_.begin(), end);
    }

  private:
    Bytes bytes_;
    std::size_t covered_ = 0;  ///< units for which there are bytes
};

/// The third section: kinds of kana, three to a byte.
class KanaSection {
  public:
    void Append(const SortUnit& unit) {
        if (unit.kana != 0) codes_.push_back(unit.kana);
    }

    bool IsEmpty() const { return codes_.empty(); }

    void AppendTo(Bytes& key) const {
        constexpr std::uint8_t Usual = 3;
        auto end = codes_.end();
        while (end != codes_.begin() && *(end - 1) == Usual)
            --end;
        const auto count = static_cast<std::size_t>(end - codes_.begin());
        for (std::size_t i = 0; i < count; i += 3) {
            unsigned packed = 0x80;
            for (std::size_t j = 0; j < 3 && i + j < count; ++j)
                packed |= static_cast<unsigned>(codes_[i + j]) << (4 - 2 * j);
            key.push_back(static_cast<std::uint8_t>(packed));
        }
        key.insert(key.end(), {0xFF, 0x02, 0x80, 0xFF, 0x80});
    }

  private:
    Bytes codes_;
};

/// The last section: units that are no letters, each with the position of the letter behind it.
class UnprintableSection {
  public:
    void Append(const SortUnit& unit, std::size_t lettersBefore) {
        if (unit.unprintable == 0) return;
        AppendBigEndian(bytes_, static_cast<std::uint32_t>(0x8007 + 4 * lettersBefore), 2);
        bytes_.push_back(0x06);
        bytes_.push_back(unit.unprintable);
    }

    bool IsEmpty() const { return bytes_.empty(); }

    void AppendTo(Bytes& key) const { key.insert(key.end(), bytes_.begin(), bytes_.end()); }

  private:
    Bytes bytes_;
};

std::u16string_view CountingPart(std::u16string_view text) {
    text = text.substr(0, LongestTextInKey);
    return text.substr(0, text.find_last_not_of(u' ') + 1);
}

/// The bytes of a text's first section one after the other, without a copy of the text.
class LetterReader {
  public:
    LetterReader(std::string_view utf8, const SortTable& table) : reader_(utf8), table_(table) {}

    /// The next byte; the end of the section, which is less than any letter, for ever after the
    /// last one.
    std::uint8_t Next() {
        while (size_ == 0) {
            if (reader_.AtEnd()) return SectionEnd;
            const SortUnit& unit = table_[reader_.Next()];
            bytes_ = unit.letterBytes;
            size_ = unit.letterSize;
            plain_ = plain_ && unit.IsPlain();
        }
        --size_;
        return static_cast<std::uint8_t>(bytes_ >> (8 * size_));
    }

    /// Whether the text, as far as it was read, has nothing that counts beside its letters.
    bool IsPlain() const { return plain_; }

  private:
    Utf16Reader reader_;
    const SortTable& table_;
    std::uint32_t bytes_ = 0;
    unsigned size_ = 0;
    bool plain_ = true;
};

/// The text without the trailing blanks that do not count; none if that takes more than a look at
/// its end, because part of the text is too far behind to count.
std::optional<std::string_view> CountingPart(std::string_view utf8) {
    if (utf8.size() > LongestTextInKey) return std::nullopt;
    return utf8.substr(0, utf8.find_last_not_of(' ') + 1);
}

Bytes TextKey(std::string_view utf8) {
    Bytes key;
    AppendTextKey(key, utf8);
    return key;
}

int CompareKeys(std::string_view left, std::string_view right) {
    const auto order = TextKey(left) <=> TextKey(right);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

}  // namespace

void AppendTextKey(Bytes& key, std::u16string_view text) {
    const SortTable& table = SortTable::Get();
    AccentSection accents;
    KanaSection kana;
    UnprintableSection unprintables;
    std::size_t units = 0;  // that are letters
    std::size_t letters = 0;
    for (const char16_t character : CountingPart(text)) {
        // Most texts are of these alone.
        if (const std::uint8_t letter = character < 0x80
                                            ? table.SimpleLetter(static_cast<char>(character))
                                            : std::uint8_t{0};
            letter != 0) {
            key.push_back(letter);
            ++units;
            ++letters;
            continue;
        }
        const SortUnit& unit = table[character];
        AppendBigEndian(key, unit.letterBytes, unit.letterSize);
        if (!unit.IsPlain()) {
            accents.Append(unit, units);
            kana.Append(unit);
            unprintables.Append(unit, letters);
        }
        if (unit.letters != 0) ++units;
        letters += unit.letters;
    }
    key.push_back(SectionEnd);
    accents.AppendTo(key);
    if (!kana.IsEmpty() || !unprintables.IsEmpty()) {
        key.insert(key.end(), {SectionEnd, SectionEnd});
        if (!kana.IsEmpty()) {
            kana.AppendTo(key);
            if (!unprintables.IsEmpty()) key.push_back(0xFF);
        }
        if (!unprintables.IsEmpty()) key.push_back(SectionEnd);
        unprintables.AppendTo(key);
    }
    key.push_back(0);
}

bool AppendPlainTextKey(Bytes& key, std::span<const std::uint8_t> text) {
    const SortTable& table = SortTable::Get();
    auto units = text.first(std::min(text.size(), LongestTextInKey));
    while (!units.empty() && units.back() == ' ')
        units = units.first(units.size() - 1);
    const std::size_t start = key.size();
    key.resize(start + units.size() + 2);
    std::uint8_t* const letters = key.data() + start;
    bool plain = true;
    for (std::size_t i = 0; i < units.size(); ++i) {
        letters[i] = table.SimpleLetter(static_cast<char>(units[i]));
        plain &= letters[i] != 0;
    }
    letters[units.size()] = SectionEnd;
    if (!plain) key.resize(start);
    return plain;
}

void AppendTextKey(Bytes& key, std::string_view utf8) {
    if (AppendPlainTextKey(key, {reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()}))
        return;
    std::array<char16_t, LongestTextInKey> units;
    std::size_t count = 0;
    for (Utf16Reader reader(utf8); count < units.size() && !reader.AtEnd();)
        units[count++] = reader.Next();
    AppendTextKey(key, std::u16string_view(units.data(), count));
}

int CompareTexts(std::string_view left, std::string_view right) {
    if (left == right) return 0;
    const auto leftPart = CountingPart(left);
    const auto rightPart = CountingPart(right);
    if (!leftPart || !rightPart) return CompareKeys(left, right);

    const SortTable& table = SortTable::Get();
    const std::size_t common = std::min(leftPart->size(), rightPart->size());
    std::size_t same = 0;
    for (; same < common; ++same) {
        const std::uint8_t leftLetter = table.SimpleLetter((*leftPart)[same]);
        const std::uint8_t rightLetter = table.SimpleLetter((*rightPart)[same]);
        if (leftLetter == 0 || rightLetter == 0) break;
        if (leftLetter != rightLetter) return leftLetter < rightLetter ? -1 : 1;
    }
    LetterReader leftLetters(leftPart->substr(same), table);
    LetterReader rightLetters(rightPart->substr(same), table);
    while (true) {
        const std::uint8_t leftByte = leftLetters.Next();
        const std::uint8_t rightByte = rightLetters.Next();
        if (leftByte != rightByte) return leftByte < rightByte ? -1 : 1;
        if (leftByte == SectionEnd) break;
    }
    // Letters are equal; accents and the like decide only now.
    if (leftLetters.IsPlain() && rightLetters.IsPlain()) return 0;
    return CompareKeys(left, right);
}

}  // namespace jet::storage
