#include "jet/storage/index/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "jet/error.h"

namespace jet::storage {

namespace {

constexpr std::size_t ShortestKey = 1;

/// The bits of the mask that can mark an end: one for each byte of the entries and one more.
constexpr std::size_t MaskBits = EntryRoom + 1;

[[noreturn]] void ThrowDamagedPage(PageNumber number, const char* what) {
    throw Error(ErrorKind::Damaged, "Index page " + std::to_string(number) + " " + what + ".");
}

std::uint32_t LoadBigEndian(std::span<const std::uint8_t> bytes) {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = value << 8 | byte;
    return value;
}

void SetEnd(Page& page, std::size_t end) {
    page[index_page_format::MaskOffset + end / 8] = static_cast<std::uint8_t>(
        page[index_page_format::MaskOffset + end / 8] | (1U << (end % 8)));
}

void ClearMask(Page& page) {
    std::fill(page.begin() + index_page_format::MaskOffset,
              page.begin() + index_page_format::EntriesOffset, std::uint8_t{0});
}

/// How many bytes are the same at the beginning, up to `most`.
std::size_t CommonLength(EntryBytes left, EntryBytes right, std::size_t most) {
    std::size_t length = 0;
    for (; length + sizeof(std::uint64_t) <= most; length += sizeof(std::uint64_t)) {
        const auto differing =
            Load<std::uint64_t>(left, length) ^ Load<std::uint64_t>(right, length);
        if (differing != 0)
            return length + static_cast<std::size_t>(std::countr_zero(differing)) / 8;
    }
    while (length < most && left[length] == right[length])
        ++length;
    return length;
}

void StoreFreeBytes(Page& page, std::size_t used) {
    Store(page, index_page_format::FreeBytesOffset, static_cast<std::uint16_t>(EntryRoom - used));
}

}  // namespace

void AppendRow(Bytes& entry, RowId row) {
    const auto bytes = ChildBytes(row.page << 8 | row.slot);
    entry.insert(entry.end(), bytes.begin(), bytes.end());
}

std::array<std::uint8_t, 4> ChildBytes(PageNumber child) {
    return {static_cast<std::uint8_t>(child >> 24), static_cast<std::uint8_t>(child >> 16),
            static_cast<std::uint8_t>(child >> 8), static_cast<std::uint8_t>(child)};
}

std::strong_ordering CompareBytes(std::span<const std::uint8_t> left,
                                  std::span<const std::uint8_t> right) {
    const std::size_t common = std::min(left.size(), right.size());
    const int order = common == 0 ? 0 : std::memcmp(left.data(), right.data(), common);
    return order != 0 ? order <=> 0 : left.size() <=> right.size();
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): ends_ is filled as far as it is read
IndexPageView::IndexPageView(const Page& page, PageNumber number, PageNumber definition)
    : page_(page) {
    const std::uint8_t type = page[0];
    leaf_ = type == static_cast<std::uint8_t>(PageType::IndexLeaf);
    if ((!leaf_ && type != static_cast<std::uint8_t>(PageType::IndexNode)) || page[1] != 1)
        ThrowDamagedPage(number, "does not look like one");
    if (Load<PageNumber>(page_, index_page_format::DefinitionOffset) != definition)
        ThrowDamagedPage(number, "belongs to another table");
    prefix_ = Load<std::uint16_t>(page_, index_page_format::PrefixOffset);
    ReadEnds(number);
    const std::size_t shortest = ShortestKey + EntryRowSize + SuffixSize();
    if (count_ != 0) {
        if (ends_[0] < shortest || prefix_ > ends_[0] - SuffixSize())
            ThrowDamagedPage(number, "has an impossible first entry");
        for (std::size_t i = 1; i < count_; ++i)
            if (prefix_ + Stored(i).size() < shortest || Stored(i).size() < SuffixSize())
                ThrowDamagedPage(number, "has an entry that is too short");
    }
}

void IndexPageView::ReadEnds(PageNumber number) {
    for (std::size_t byte = 0; byte * 8 < MaskBits; byte += 8) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, page_.data() + index_page_format::MaskOffset + byte,
                    std::min<std::size_t>(8, index_page_format::EntriesOffset -
                                                 index_page_format::MaskOffset - byte));
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t end = byte * 8 + static_cast<std::size_t>(std::countr_zero(bits));
            if (end == 0 || end >= MaskBits)
                ThrowDamagedPage(number, "has an impossible entry mask");
            ends_[count_++] = static_cast<std::uint16_t>(end);
        }
    }
}

std::span<const std::uint8_t> IndexPageView::Stored(std::size_t i) const {
    return page_.subspan(index_page_format::EntriesOffset + Start(i), ends_[i] - Start(i));
}

std::span<const std::uint8_t> IndexPageView::Prefix() const {
    return page_.subspan(index_page_format::EntriesOffset, prefix_);
}

std::size_t IndexPageView::LowerBound(std::span<const std::uint8_t> bytes) const {
    if (count_ == 0) return 0;
    const auto first = Stored(0);
    if (CompareBytes(first.first(first.size() - SuffixSize()), bytes) >= 0) return 0;
    const auto head = bytes.first(std::min(prefix_, bytes.size()));
    if (CompareBytes(Prefix(), head) < 0) return count_;
    const auto rest = bytes.subspan(head.size());
    std::size_t low = 1, high = count_;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        const auto stored = Stored(middle);
        if (CompareBytes(stored.first(stored.size() - SuffixSize()), rest) < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

bool IndexPageView::BeginsWith(std::size_t i, std::span<const std::uint8_t> bytes) const {
    const Bytes entry = KeyAndRow(i);
    return entry.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), entry.begin());
}

bool IndexPageView::IsEntry(std::size_t i, std::span<const std::uint8_t> bytes) const {
    return std::ranges::equal(KeyAndRow(i), bytes);
}

Bytes IndexPageView::Entry(std::size_t i) const {
    Bytes entry;
    CopyEntry(i, entry);
    return entry;
}

void IndexPageView::CopyEntry(std::size_t i, Bytes& bytes) const {
    const auto stored = Stored(i);
    bytes.clear();
    if (i != 0) bytes.assign(Prefix().begin(), Prefix().end());
    bytes.insert(bytes.end(), stored.begin(), stored.end());
}

Bytes IndexPageView::KeyAndRow(std::size_t i) const {
    Bytes entry = Entry(i);
    entry.erase(entry.end() - static_cast<std::ptrdiff_t>(SuffixSize()), entry.end());
    return entry;
}

RowId IndexPageView::Row(std::size_t i) const {
    const Bytes entry = KeyAndRow(i);
    const std::uint32_t pointer = LoadBigEndian(std::span(entry).last(EntryRowSize));
    return {.page = pointer >> 8, .slot = static_cast<std::uint8_t>(pointer & 0xFF)};
}

PageNumber IndexPageView::Child(std::size_t i) const {
    return i == count_ ? Tail() : LoadBigEndian(Stored(i).last(index_page_format::ChildSize));
}

bool IndexPageView::InsertInto(Page& page, std::size_t i,
                               std::span<const std::uint8_t> entry) const {
    const std::size_t prefix = count_ == 0 ? 0 : prefix_;
    if (entry.size() <= prefix + SuffixSize() ||
        !std::ranges::equal(entry.first(prefix), Prefix().first(prefix)))
        return false;
    const auto added = entry.subspan(prefix);
    const std::size_t used = UsedBytes();
    if (used + added.size() > EntryRoom) return false;

    // In front of all others, the new entry takes over the prefix that the page begins with.
    const std::size_t place = i == 0 ? prefix : Start(i);
    const auto start =
        page.begin() + static_cast<std::ptrdiff_t>(index_page_format::EntriesOffset + place);
    const auto end =
        page.begin() + static_cast<std::ptrdiff_t>(index_page_format::EntriesOffset + used);
    std::copy_backward(start, end, end + static_cast<std::ptrdiff_t>(added.size()));
    std::ranges::copy(added, start);
    ClearMask(page);
    for (std::size_t j = 0; j < i; ++j)
        SetEnd(page, ends_[j]);
    SetEnd(page, place + added.size());
    for (std::size_t j = i; j < count_; ++j)
        SetEnd(page, ends_[j] + added.size());
    Store(page, index_page_format::PrefixOffset, static_cast<std::uint16_t>(prefix));
    StoreFreeBytes(page, used + added.size());
    return true;
}

void IndexPageView::RemoveFrom(Page& page, std::size_t i) const {
    const std::size_t prefix = count_ == 1 ? 0 : prefix_;
    const std::size_t used = UsedBytes();
    // The first entry leaves the prefix to the one that follows it.
    const std::size_t place = i == 0 ? prefix : Start(i);
    const std::size_t size = ends_[i] - place;
    const auto start =
        page.begin() + static_cast<std::ptrdiff_t>(index_page_format::EntriesOffset + place);
    const auto end =
        page.begin() + static_cast<std::ptrdiff_t>(index_page_format::EntriesOffset + used);
    std::fill(std::copy(start + static_cast<std::ptrdiff_t>(size), end, start), end,
              std::uint8_t{0});
    ClearMask(page);
    for (std::size_t j = 0; j < i; ++j)
        SetEnd(page, ends_[j]);
    for (std::size_t j = i + 1; j < count_; ++j)
        SetEnd(page, ends_[j] - size);
    Store(page, index_page_format::PrefixOffset, static_cast<std::uint16_t>(prefix));
    StoreFreeBytes(page, used - size);
}

std::vector<EntryBytes> IndexPageView::Entries(EntryMemory& memory) const {
    std::vector<EntryBytes> entries;
    entries.reserve(count_ + 2);
    const auto bytes = memory.Take(UsedBytes() + (count_ == 0 ? 0 : prefix_ * (count_ - 1)));
    auto end = bytes.begin();
    for (std::size_t i = 0; i < count_; ++i) {
        const auto start = end;
        if (i != 0) end = std::ranges::copy(Prefix(), end).out;
        end = std::ranges::copy(Stored(i), end).out;
        entries.emplace_back(start, end);
    }
    return entries;
}

IndexPageContent IndexPageContent::From(const IndexPageView& view, EntryMemory& memory) {
    return {.leaf = view.IsLeaf(),
            .height = view.Height(),
            .previous = view.Previous(),
            .next = view.Next(),
            .tail = view.Tail(),
            .entries = view.Entries(memory)};
}

/// The prefix is a part of the key alone: a row or child may not be cut in two.
std::size_t IndexPageContent::KeySize(std::size_t i) const {
    return entries[i].size() - EntryRowSize - (leaf ? 0 : index_page_format::ChildSize);
}

std::size_t IndexPageContent::PrefixLength(std::size_t first, std::size_t last) const {
    if (last - first < 2) return 0;
    std::size_t length = KeySize(first);
    for (std::size_t i = first + 1; i < last; ++i)
        length = CommonLength(entries[first], entries[i], std::min(length, KeySize(i)));
    return length;
}

/// The end of as many entries as a page can hold, but one at least.
std::size_t IndexPageContent::EndOfFullPage(std::size_t first) const {
    std::size_t size = entries[first].size(), prefix = KeySize(first), end = first + 1;
    for (; end < entries.size(); ++end) {
        size += entries[end].size();
        prefix = CommonLength(entries[first], entries[end], std::min(prefix, KeySize(end)));
        if (size > EntryRoom && size - prefix * (end - first) > EntryRoom) break;
    }
    return end;
}

std::size_t IndexPageContent::Size(std::size_t first, std::size_t last) const {
    std::size_t size = 0;
    for (std::size_t i = first; i < last; ++i)
        size += entries[i].size();
    return size;
}

bool IndexPageContent::Fits(std::size_t first, std::size_t last) const {
    const std::size_t size = Size(first, last);
    return size <= EntryRoom || size - PrefixLength(first, last) * (last - first - 1) <= EntryRoom;
}

std::size_t IndexPageContent::BalancedCut(std::size_t first, std::size_t last) const {
    const std::size_t half = Size(first, last) / 2;
    std::size_t cut = first, before = 0;
    while (cut + 1 < last && before + entries[cut].size() / 2 < half)
        before += entries[cut++].size();
    return std::max(cut, first + 1);
}

std::vector<std::size_t> IndexPageContent::Cuts(bool ascending) const {
    std::vector<std::size_t> cuts;
    const std::size_t count = entries.size();
    if (Fits(0, count)) return cuts;
    if (ascending) {
        // The last part of a node keeps an entry beside its tail.
        for (std::size_t end = EndOfFullPage(0); end < count; end = EndOfFullPage(end))
            cuts.push_back(end);
        return cuts;
    }
    cuts.push_back(BalancedCut(0, count));
    // A part that does not fit is cut again; each cut makes parts smaller, so this ends.
    for (std::size_t part = 0; part <= cuts.size();) {
        const std::size_t first = part == 0 ? 0 : cuts[part - 1];
        const std::size_t last = part == cuts.size() ? count : cuts[part];
        if (last - first < 2 || Fits(first, last)) {
            ++part;
        } else {
            cuts.insert(cuts.begin() + static_cast<std::ptrdiff_t>(part), BalancedCut(first, last));
        }
    }
    return cuts;
}

void IndexPageContent::WriteTo(Page& page, PageNumber definition) const {
    const std::size_t prefix =
        Size(0, entries.size()) <= EntryRoom ? 0 : PrefixLength(0, entries.size());
    page.fill(0);
    page[0] = static_cast<std::uint8_t>(leaf ? PageType::IndexLeaf : PageType::IndexNode);
    page[1] = 1;
    Store(page, index_page_format::DefinitionOffset, definition);
    Store(page, index_page_format::PreviousOffset, previous);
    Store(page, index_page_format::NextOffset, next);
    Store(page, index_page_format::TailOffset, tail);
    Store(page, index_page_format::PrefixOffset, static_cast<std::uint16_t>(prefix));
    page[index_page_format::HeightOffset] = height;
    std::size_t end = 0;
    for (const EntryBytes entry : entries) {
        const auto stored = entry.subspan(end == 0 ? 0 : prefix);
        std::ranges::copy(stored, page.begin() + static_cast<std::ptrdiff_t>(
                                                     index_page_format::EntriesOffset + end));
        end += stored.size();
        SetEnd(page, end);
    }
    StoreFreeBytes(page, end);
}

}  // namespace jet::storage
