#include "run/folder_images.h"

#include <algorithm>
#include <array>

#include "platform/basic_text.h"

namespace quillon {
namespace {

// The best comes first.
constexpr std::array<std::string_view, 4> Names{"cover", "folder", "front", "albumart"};
constexpr std::array<std::string_view, 3> Extensions{".jpg", ".jpeg", ".png"};
constexpr std::size_t NoRank = Names.size() * Extensions.size();

/// How good a cover a file of this name is: 0 is the best; NoRank for one that is none.
std::size_t RankOf(std::string_view fileName) {
    const std::string name = LowerCase(fileName);
    for (std::size_t i = 0; i < Names.size(); ++i) {
        if (!name.starts_with(Names.at(i))) continue;
        const auto* const extension =
            std::ranges::find(Extensions, std::string_view(name).substr(Names.at(i).size()));
        if (extension != Extensions.end())
            return i * Extensions.size() + static_cast<std::size_t>(extension - Extensions.begin());
    }
    return NoRank;
}

}  // namespace

bool IsFolderImage(std::string_view fileName) {
    return RankOf(fileName) < NoRank;
}

std::string BestFolderImage(std::span<const FileEntry> files) {
    const FileEntry* best = nullptr;
    for (const FileEntry& file : files) {
        // What a copy that broke off has left would hide the others.
        const std::size_t rank = file.size == 0 ? NoRank : RankOf(file.name);
        if (rank < NoRank && (best == nullptr || rank < RankOf(best->name))) best = &file;
    }
    return best == nullptr ? "" : best->path;
}

void FolderImages::Note(std::string_view folder, std::span<const FileEntry> files) {
    images_[LowerCase(folder)] = BestFolderImage(files);
}

std::optional<std::string> FolderImages::Find(std::string_view folder) const {
    const auto found = images_.find(LowerCase(folder));
    if (found == images_.end()) return std::nullopt;
    return found->second;
}

}  // namespace quillon
