#include "jet/verify/usage_map.h"

#include "jet/verify/slots.h"

namespace jet::verify {

using storage::PageNumber;

namespace {

constexpr std::uint8_t Inline = 0, ByReference = 1;
constexpr std::size_t InlineHeader = 5, BitmapHeader = 4;
constexpr std::size_t PagesPerBitmap = (storage::PageSize - BitmapHeader) * 8;

}  // namespace

void UsageMaps::AddBits(std::span<const std::uint8_t> bits, PageNumber first, bool mayReachOut,
                        const std::string& where, std::vector<PageNumber>& found) {
    for (std::size_t i = 0; i < bits.size() * 8; ++i) {
        if ((bits[i / 8] >> (i % 8) & 1) == 0) continue;
        const std::size_t page = first + i;
        if (page < pages_.Count()) {
            found.push_back(static_cast<PageNumber>(page));
        } else if (!mayReachOut) {
            findings_.Fault(where, "the map names page " + std::to_string(page) +
                                       ", which lies outside the file");
            return;
        }
    }
}

std::vector<PageNumber> UsageMaps::Read(storage::RowId map, const std::string& where,
                                        bool mayReachOut) {
    std::vector<PageNumber> found;
    if (!known_.insert(map).second) {
        findings_.Fault(where, "the map at " + Place(map) + " is named twice");
        return found;
    }
    if (!pages_.Claim(map.page, PageUse::MapRows, where)) return found;
    const Slots slots(pages_.Read(map.page));
    if (!slots.IsSound() || map.slot >= slots.Count() || slots.State(map.slot) != SlotState::Row ||
        slots.Bytes(map.slot).size() < InlineHeader) {
        findings_.Fault(where, "there is no map at " + Place(map));
        return found;
    }
    // Pages of map rows belong to no table; the page of the global map names itself.
    if (slots.Owner() != (map.page == 1 ? 1U : 0U))
        findings_.Fault(where, "page " + std::to_string(map.page) + " has maps and an owner");
    const auto row = slots.Bytes(map.slot);
    if (row[0] == Inline) {
        if (const auto first = storage::Load<PageNumber>(row, 1); first > pages_.Count())
            findings_.Fault(where, "the map at " + Place(map) + " begins outside the file");
        AddBits(row.subspan(InlineHeader), storage::Load<PageNumber>(row, 1), mayReachOut, where,
                found);
    } else if (row[0] == ByReference) {
        for (std::size_t k = 0; 1 + 4 * (k + 1) <= row.size(); ++k) {
            const auto number = storage::Load<PageNumber>(row, 1 + 4 * k);
            if (number == 0 || !pages_.Claim(number, PageUse::MapBitmap, where)) continue;
            const auto page = pages_.Read(number);
            if ((*page)[0] != static_cast<std::uint8_t>(storage::PageType::UsageBitmap)) {
                findings_.Fault(where, "page " + std::to_string(number) + " is no bitmap page");
                continue;
            }
            AddBits(std::span(*page).subspan(BitmapHeader),
                    static_cast<PageNumber>(k * PagesPerBitmap), mayReachOut, where, found);
        }
    } else {
        findings_.Fault(where, "the map at " + Place(map) + " is of no known kind");
    }
    return found;
}

}  // namespace jet::verify
