#include "reconcile/wished_numbers.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>

#include "platform/basic_text.h"
#include "run/paths.h"

namespace quillon {
namespace {

bool IsDigit(char letter) {
    return std::isdigit(static_cast<unsigned char>(letter)) != 0;
}

bool IsAsciiLetter(char letter) {
    return std::isalpha(static_cast<unsigned char>(letter)) != 0;
}

/// A list of remarks, of which only the first few are told.
class Remarks {
  public:
    void Add(std::int64_t number, std::string_view what) {
        constexpr std::size_t Most = 5;
        if (count_++ >= Most) return;
        text_ += (text_.empty() ? "" : ", ") + std::to_string(number) + std::string(what);
        if (count_ == Most) text_ += " ...";
    }
    std::string Text() const { return text_; }

  private:
    std::string text_;
    std::size_t count_ = 0;
};

/// For a remark; "" for the only or first one.
std::string OnDisc(const Disc& disc) {
    const std::int64_t number = disc.folder > 0 ? disc.folder : disc.tag;
    return number > 1 ? " on disc " + std::to_string(number) : "";
}

}  // namespace

std::optional<std::int64_t> LeadingNumber(std::string_view fileName) {
    constexpr std::size_t MostDigits = 3;
    const auto end = std::ranges::find_if_not(fileName, IsDigit);
    const std::string_view digits(fileName.begin(), end);
    if (digits.empty() || digits.size() > MostDigits) return std::nullopt;
    if (end != fileName.end() && IsAsciiLetter(*end)) return std::nullopt;
    const int number = std::stoi(std::string(digits));
    return number > 0 ? std::optional<std::int64_t>(number) : std::nullopt;
}

bool ComesBefore(const WishedNumber& left, const WishedNumber& right) {
    constexpr std::int64_t Last = std::numeric_limits<std::int64_t>::max();
    if (left.disc != right.disc) return left.disc < right.disc;
    const std::int64_t one = left.number.value_or(Last), other = right.number.value_or(Last);
    return one != other ? one < other : WindowsNameLess(LastName(left.path), LastName(right.path));
}

std::string OddNumbers(std::span<const WishedNumber> wishes) {
    Remarks remarks;
    std::int64_t last = 0;
    bool isToldTwice = false;
    Disc disc = wishes.empty() ? Disc() : wishes.front().disc;
    for (const WishedNumber& wish : wishes) {
        if (wish.disc != disc) {
            disc = wish.disc;
            last = 0;
            isToldTwice = false;
        }
        if (!wish.number) continue;
        const std::string where = OnDisc(disc);
        if (*wish.number == last) {
            if (!isToldTwice) remarks.Add(last, " is there twice" + where);
            isToldTwice = true;
            continue;
        }
        isToldTwice = false;
        // A number that is far off is a year, or a part of a title.
        constexpr std::int64_t MostMissing = 99;
        for (std::int64_t gap = last + 1; gap < *wish.number && *wish.number <= MostMissing; ++gap)
            remarks.Add(gap, " is missing" + where);
        last = *wish.number;
    }
    return remarks.Text();
}

}  // namespace quillon
