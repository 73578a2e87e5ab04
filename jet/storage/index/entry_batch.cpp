#include "jet/storage/index/entry_batch.h"

#include <algorithm>

#include "jet/storage/index/index_page.h"

namespace jet::storage {

namespace {

template <typename Vector>
void GrowBy(Vector& vector, std::size_t count) {
    if (vector.capacity() - vector.size() >= count) return;
    vector.reserve(std::max(vector.size() + count, vector.capacity() * 2));
}

std::uint64_t BeginningOf(EntryBytes entry) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < sizeof(number); ++i)
        number = number << 8 | (i < entry.size() ? entry[i] : 0U);
    return number;
}

}  // namespace

void EntryBatch::Reserve(std::span<const std::uint8_t> key) {
    GrowBy(bytes_, key.size() + EntryRowSize);
    GrowBy(items_, 1);
}

void EntryBatch::Add(std::span<const std::uint8_t> key, RowId row) {
    Item item{0, static_cast<std::uint32_t>(bytes_.size()),
              static_cast<std::uint32_t>(key.size() + EntryRowSize)};
    bytes_.insert(bytes_.end(), key.begin(), key.end());
    AppendRow(bytes_, row);
    item.beginning = BeginningOf(BytesOf(item));
    inOrder_ = inOrder_ && (items_.empty() || !IsLess(item, items_.back()));
    items_.push_back(item);
}

std::span<const std::uint8_t> EntryBatch::LastKey() const {
    const EntryBytes last = BytesOf(items_.back());
    return last.first(last.size() - EntryRowSize);
}

bool EntryBatch::IsLess(const Item& left, const Item& right) const {
    if (left.beginning != right.beginning) return left.beginning < right.beginning;
    return CompareBytes(BytesOf(left), BytesOf(right)) < 0;
}

void EntryBatch::Sort() {
    if (inOrder_) return;
    const auto begin = items_.begin() + static_cast<std::ptrdiff_t>(first_);
    const auto isLess = [this](const Item& left, const Item& right) { return IsLess(left, right); };
    if (!std::is_sorted(begin, items_.end(), isLess)) std::sort(begin, items_.end(), isLess);
}

void EntryBatch::DropFirst(std::size_t count) {
    first_ += count;
    if (IsEmpty()) *this = EntryBatch();
}

std::span<std::uint8_t> EntryMemory::Take(std::size_t size) {
    constexpr std::size_t BlockSize = std::size_t{4} * PageSize;
    if (blocks_.empty() || blocks_.back().size() - used_ < size) {
        blocks_.emplace_back(std::max(BlockSize, size));
        used_ = 0;
    }
    used_ += size;
    return std::span(blocks_.back()).subspan(used_ - size, size);
}

EntryBytes EntryMemory::Join(EntryBytes bytes, EntryBytes more) {
    const auto joined = Take(bytes.size() + more.size());
    std::ranges::copy(more, std::ranges::copy(bytes, joined.begin()).out);
    return joined;
}

void EntryMemory::Clear() {
    if (blocks_.size() > 1) blocks_.resize(1);
    used_ = 0;
}

}  // namespace jet::storage
