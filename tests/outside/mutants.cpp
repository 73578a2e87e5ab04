#include "tests/outside/mutants.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/outside/density.h"

namespace outside {
namespace {

constexpr std::size_t PageSize = 4096, DataHeader = 14, DefinitionHeader = 8;
/// Pages that are not in use may hold anything.
constexpr std::size_t MostRows = 255;

/// A byte that may be changed, and what it is a part of.
struct Place {
    std::size_t offset;
    const char* part;
};

class Structure {
  public:
    explicit Structure(const std::string& bytes) : bytes_(bytes) {
        for (std::size_t page = 1; page < bytes.size() / PageSize; ++page)
            AddPage(page * PageSize);
    }

    static constexpr std::size_t Parts = 5;
    const std::vector<Place>& Part(std::size_t part) const { return places_.at(part); }

  private:
    unsigned Byte(std::size_t offset) const { return static_cast<unsigned char>(bytes_[offset]); }
    std::size_t Word(std::size_t offset) const { return Byte(offset) | Byte(offset + 1) << 8U; }
    std::size_t Long(std::size_t offset) const { return Word(offset) | Word(offset + 2) << 16U; }

    void AddPage(std::size_t page) {
        enum Kind : unsigned { Data = 1, Definition = 2, Node = 3, Leaf = 4, Bitmap = 5 };
        switch (Byte(page)) {
            case Data:
                Add(0, page, page + DataHeader, "header of a page with rows");
                Add(1, page + DataHeader,
                    page + DataHeader + 2 * std::min(Word(page + 12), MostRows), "place of a row");
                // Pages without an owner, and the first one, hold usage maps.
                if (Long(page + 4) <= 1) Add(2, LowestRow(page), page + PageSize, "usage map");
                break;
            case Definition:
                Add(3, page, page + DefinitionHeader, "header of a definition");
                Add(3, page + DefinitionHeader, page + std::min(Long(page + 8), PageSize),
                    "definition");
                break;
            case Node:
            case Leaf:
                Add(4, page, page + 27, "header of an index page");
                AddEntries(page);
                break;
            case Bitmap:
                Add(2, page, page + PageSize, "bitmap of a usage map");
                break;
            default:
                break;
        }
    }

    std::size_t LowestRow(std::size_t page) const {
        const std::size_t rows = std::min(Word(page + 12), MostRows);
        return page + (rows == 0 ? PageSize : Word(page + DataHeader + 2 * (rows - 1)) & 0x1FFF);
    }

    void AddEntries(std::size_t page) {
        constexpr std::size_t Mask = 27, Entries = 480, Room = 3616;
        const std::size_t used = Room - std::min(Room, Word(page + 2));
        Add(4, page + Mask, page + Mask + used / 8 + 1, "mask of an index page");
        Add(4, page + Entries, page + Entries + used, "entries of an index page");
    }

    void Add(std::size_t part, std::size_t from, std::size_t to, const char* what) {
        for (std::size_t offset = from; offset < to; ++offset)
            places_.at(part).push_back({offset, what});
    }

    const std::string& bytes_;
    std::array<std::vector<Place>, Parts> places_;
};

}  // namespace

Mutant MutantOf(const std::string& database, std::uint32_t seed) {
    const Structure structure(database);
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    // Each part in turn: most bytes are those of indexes.
    const std::vector<Place>& part = structure.Part(seed % Structure::Parts);
    const Place place = part.at(below(part.size()));
    Mutant mutant{database, ""};
    const auto old = static_cast<unsigned char>(database[place.offset]);
    unsigned char changed = old;
    while (changed == old) {
        switch (below(4)) {
            case 0:
                changed = 0;
                break;
            case 1:
                changed = 0xFF;
                break;
            case 2:
                changed = static_cast<unsigned char>(old ^ 1U << below(8));
                break;
            default:
                changed = static_cast<unsigned char>(below(256));
        }
    }
    mutant.bytes[place.offset] = static_cast<char>(changed);
    mutant.where = "seed " + std::to_string(seed) + ": " + place.part + ", page " +
                   std::to_string(place.offset / PageSize) + " byte " +
                   std::to_string(place.offset % PageSize) + ", " + std::to_string(old) + " to " +
                   std::to_string(changed);
    return mutant;
}

std::uint32_t MutantCount(std::uint32_t usual) {
    const char* const wanted = std::getenv("QUILLON_MUTANTS");
    if (wanted != nullptr) return static_cast<std::uint32_t>(std::stoul(wanted));
    return usual / static_cast<std::uint32_t>(StepUnderSanitizers(3));
}

}  // namespace outside
