#include "run/playlist_entries.h"

#include <algorithm>
#include <numeric>

#include "platform/basic_text.h"

namespace quillon {
namespace {

std::uint32_t SongHash(std::int32_t id, TextPool::Number playlist) {
    return MixedHash(static_cast<std::uint32_t>(id), playlist);
}

std::uint32_t PlaceHash(TextPool::Number cdjid, std::int32_t track, TextPool::Number playlist) {
    return MixedHash((std::uint64_t{cdjid} << 32U) | static_cast<std::uint32_t>(track), playlist);
}

/// Each text's place in the order of all texts.
std::vector<std::uint32_t> Ranks(const TextPool& texts) {
    std::vector<TextPool::Number> order(texts.Count());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&texts](TextPool::Number a, TextPool::Number b) {
        return WindowsNameLess(texts.Text(a), texts.Text(b));
    });
    std::vector<std::uint32_t> ranks(order.size());
    for (std::uint32_t rank = 0; rank < order.size(); ++rank)
        ranks[order[rank]] = rank;
    return ranks;
}

}  // namespace

void PlaylistEntries::Add(const PlaylistEntry& entry) {
    const auto position = static_cast<Position>(rows_.size());
    const Row& row = rows_.emplace_back(Row{.id = entry.ID,
                                            .track = entry.Track,
                                            .processed = entry.Processed,
                                            .random = entry.Random,
                                            .artist = artists_.Add(entry.Artist),
                                            .cdjid = cdjids_.Add(entry.CDJID),
                                            .genre = genres_.Add(entry.Genre),
                                            .playlist = playlists_.Add(entry.Playlist)});
    if (!SongRow(row.id, row.playlist)) bySong_.Add(SongHash(row.id, row.playlist), position);
    if (!PlaceRow(row.cdjid, row.track, row.playlist))
        byPlace_.Add(PlaceHash(row.cdjid, row.track, row.playlist), position);
}

PlaylistEntry PlaylistEntries::At(Position position) const {
    const Row& row = rows_.at(position);
    return {.ID = Present(row.id),
            .Track = row.track,
            .Artist = artists_.Text(row.artist),
            .CDJID = cdjids_.Text(row.cdjid),
            .Genre = genres_.Text(row.genre),
            .Playlist = playlists_.Text(row.playlist),
            .Processed = row.processed,
            .Random = row.random};
}

std::optional<PlaylistEntries::Position> PlaylistEntries::SongRow(std::int32_t id,
                                                                  Text playlist) const {
    return bySong_.Find(SongHash(id, playlist), [&](Position at) {
        return rows_[at].id == id && rows_[at].playlist == playlist;
    });
}

std::optional<PlaylistEntries::Position> PlaylistEntries::PlaceRow(Text cdjid, std::int32_t track,
                                                                   Text playlist) const {
    return byPlace_.Find(PlaceHash(cdjid, track, playlist), [&](Position at) {
        const Row& row = rows_[at];
        return row.cdjid == cdjid && row.track == track && row.playlist == playlist;
    });
}

std::optional<PlaylistEntries::Position> PlaylistEntries::FindSong(
    std::int32_t id, std::string_view playlist) const {
    const std::optional<Text> name = playlists_.Find(playlist);
    return name ? SongRow(id, *name) : std::nullopt;
}

std::optional<PlaylistEntries::Position> PlaylistEntries::FindPlace(
    std::string_view cdjid, std::int32_t track, std::string_view playlist) const {
    const std::optional<Text> album = cdjids_.Find(cdjid);
    const std::optional<Text> name = playlists_.Find(playlist);
    return album && name ? PlaceRow(*album, track, *name) : std::nullopt;
}

std::vector<PlaylistEntries::Position> PlaylistEntries::Sorted(const TextPool& texts,
                                                               Text Row::* text) const {
    std::vector<Position> sorted;
    for (Position at = 0; at < rows_.size(); ++at) {
        if (!texts.Text(rows_[at].*text).empty()) sorted.push_back(at);
    }
    const std::vector<std::uint32_t> ranks = Ranks(texts);
    std::stable_sort(sorted.begin(), sorted.end(), [&](Position a, Position b) {
        const Row& left = rows_[a];
        const Row& right = rows_[b];
        if (left.*text != right.*text) return ranks[left.*text] < ranks[right.*text];
        return left.random < right.random;
    });
    return sorted;
}

void PlaylistEntries::SongBecame(std::int32_t oldId, std::int32_t newId) {
    // Of rows that became each other one must stay what it is.
    if (Present(newId) != Present(oldId)) became_[oldId] = newId;
}

std::int32_t PlaylistEntries::Present(std::int32_t id) const {
    for (auto found = became_.find(id); found != became_.end(); found = became_.find(id))
        id = found->second;
    return id;
}

bool PlaylistEntries::HasBecomeAnother(Position position) const {
    return became_.contains(rows_.at(position).id);
}

void PlaylistEntries::NoteRead(std::string_view playlist, const PlaylistContent& content) {
    contents_[playlists_.Add(playlist)] = content;
}

std::optional<PlaylistContent> PlaylistEntries::ContentOf(std::string_view playlist) const {
    const std::optional<Text> name = playlists_.Find(playlist);
    const auto found = name ? contents_.find(*name) : contents_.end();
    if (found == contents_.end()) return std::nullopt;
    return found->second;
}

void PlaylistEntries::NoteUnread(std::string_view playlist) {
    unread_.insert(playlists_.Add(playlist));
}

void PlaylistEntries::NoteMadeAnew(std::string_view playlist) {
    madeAnew_.insert(playlists_.Add(playlist));
}

bool PlaylistEntries::IsIn(const std::unordered_set<Text>& names, std::string_view playlist) const {
    const std::optional<Text> name = playlists_.Find(playlist);
    return name && names.contains(*name);
}

}  // namespace quillon
