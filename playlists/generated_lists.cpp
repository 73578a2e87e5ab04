#include "playlists/generated_lists.h"

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/windows_name.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_text.h"
#include "run/name_cleaning.h"

namespace quillon {
void GeneratedLists::Begin(std::string_view genreOrArtist) {
    const std::string name = NoPlaylistNasties(genreOrArtist);
    hasName_ = !name.empty() && IsWindowsName(name + std::string(PlaExtension));
    part_ = count_ = 0;
    if (!hasName_) {
        nameless_.emplace_back(genreOrArtist);
        return;
    }
    lists_.push_back({.of = std::string(genreOrArtist),
                      .stem = name,
                      .name = name,
                      .begin = lines_.size(),
                      .end = lines_.size()});
}

void GeneratedLists::AddTrack(std::string_view cdjid, std::int32_t track) {
    if (!hasName_) return;
    if (count_ > maxLength_) BeginPart();
    AddLine(cdjid, track);
}

void GeneratedLists::AddAlbum(std::string_view cdjid) {
    if (hasName_) AddLine(cdjid, WholeAlbum);
}

/// With the last three digits of the number alone, so that part 1001 takes the place of part 1.
void GeneratedLists::BeginPart() {
    ++part_;
    count_ = 0;
    const std::string digits = "000" + std::to_string(part_);
    GeneratedList next = lists_.back();
    next.name = next.stem + std::string(Right(digits, 3));
    next.begin = next.end = lines_.size();
    lists_.push_back(std::move(next));
}

void GeneratedLists::AddLine(std::string_view cdjid, std::int32_t track) {
    lines_.push_back({cdjids_.Add(cdjid), track});
    lists_.back().end = lines_.size();
    ++count_;
}

std::string GeneratedLists::Text(const GeneratedList& list) const {
    std::string text(PlaHeader);
    text += PlaylistLineEnd;
    for (std::size_t at = list.begin; at < list.end; ++at) {
        const Line& line = lines_[at];
        const std::string_view cdjid = cdjids_.Text(line.cdjid);
        text += line.track == WholeAlbum ? PlaAlbumLine(cdjid) : PlaLine(cdjid, line.track);
        text += PlaylistLineEnd;
    }
    return Utf8ToAnsi(text);
}

}  // namespace quillon
