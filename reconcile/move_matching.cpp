#include "reconcile/move_matching.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

namespace quillon {
namespace {

using Song = std::size_t;
using Twins = MoveAnswer::Twins;

/// A title that so many files have says nothing about where an album has gone.
constexpr std::size_t MostNamesakes = 16;

/// The songs of one album, by title.
using Titles = std::unordered_multimap<std::uint32_t, Song>;

class Matching {
  public:
    Matching(const TextRules& rules, const MoveQuestion& question)
        : rules_(rules),
          question_(question),
          lostHashes_(Hashes(question.lost)),
          foundHashes_(Hashes(question.found)),
          isTaken_(question.found.size()) {
        answer_.becomes.resize(question.lost.size());
        for (Song found = 0; found < question.found.size(); ++found) {
            titles_[foundHashes_[found]].push_back(found);
            foundIn_[question.found[found].album].push_back(found);
        }
        for (Song lost = 0; lost < question.lost.size(); ++lost)
            lostFrom_[question.lost[lost].album].push_back(lost);
    }

    MoveAnswer Perform() {
        MatchSounds();
        for (const Kin kin : {Kin::SameName, Kin::SameSounds, Kin::SameTitles})
            MatchTitles(kin);
        for (Twins& twins : twins_) {
            std::erase_if(twins.lost, [&](Song lost) { return answer_.becomes[lost].has_value(); });
            std::erase_if(twins.found, [&](Song found) { return isTaken_[found]; });
            if (!twins.lost.empty() && !twins.found.empty())
                answer_.twins.push_back(std::move(twins));
        }
        return std::move(answer_);
    }

  private:
    /// What an album and the one that it may have become have in common, beside titles.
    enum class Kin { SameName, SameSounds, SameTitles };

    template <typename Songs>
    std::vector<std::uint32_t> Hashes(const Songs& songs) const {
        std::vector<std::uint32_t> hashes;
        hashes.reserve(songs.size());
        for (const auto& song : songs)
            hashes.push_back(rules_.Hash(song.title));
        return hashes;
    }

    void Take(Song lost, Song found) {
        answer_.becomes[lost] = found;
        isTaken_[found] = true;
    }

    void MatchSounds() {
        std::map<std::pair<std::uint64_t, std::uint64_t>, Twins> groups;
        const auto key = [](const SoundPrint& print) {
            return std::pair(print.size, print.samples);
        };
        for (Song lost = 0; lost < question_.lost.size(); ++lost) {
            if (const auto& print = question_.lost[lost].print)
                groups[key(*print)].lost.push_back(lost);
        }
        for (Song found = 0; found < question_.found.size(); ++found) {
            const auto& print = question_.found[found].print;
            const auto group = print ? groups.find(key(*print)) : groups.end();
            if (group != groups.end()) group->second.found.push_back(found);
        }
        for (auto& [print, group] : groups) {
            if (group.found.empty() || TakeOnly(group)) continue;
            MatchWholes(group);
            twins_.push_back(std::move(group));
        }
    }

    bool TakeOnly(const Twins& group) {
        if (group.lost.size() != 1 || group.found.size() != 1) return false;
        Take(group.lost.front(), group.found.front());
        return true;
    }

    /// The samples of several sounds agree. All their bytes may tell them apart.
    void MatchWholes(const Twins& group) {
        std::map<std::uint64_t, Twins> wholes;
        for (const Song lost : group.lost) {
            if (!question_.lost[lost].whole) return;
            wholes[*question_.lost[lost].whole].lost.push_back(lost);
        }
        if (wholes.size() < 2 && group.lost.size() > 1) return;
        for (const Song found : group.found) {
            const std::optional<std::uint64_t> whole = question_.wholeOf(found);
            if (!whole) return;
            wholes[*whole].found.push_back(found);
        }
        for (const auto& [whole, same] : wholes)
            TakeOnly(same);
    }

    /// Albums that a lost one may have become.
    std::set<std::size_t> Candidates(std::size_t album, const std::vector<Song>& songs,
                                     Kin kin) const {
        std::set<std::size_t> albums;
        if (kin == Kin::SameName) {
            if (const auto same = question_.lostAlbums[album].sameName) albums.insert(*same);
            return albums;
        }
        for (const Song lost : songs) {
            if (kin == Kin::SameSounds) {
                if (const auto found = answer_.becomes[lost])
                    albums.insert(question_.found[*found].album);
                continue;
            }
            const auto namesakes = titles_.find(lostHashes_[lost]);
            if (namesakes == titles_.end() || namesakes->second.size() > MostNamesakes) continue;
            for (const Song found : namesakes->second)
                albums.insert(question_.found[found].album);
        }
        return albums;
    }

    bool MayBe(Song lost, Song found) const {
        const LostSong& from = question_.lost[lost];
        const FoundSong& to = question_.found[found];
        if (from.print && to.print && from.print != to.print) return false;
        return rules_.AreEqual(from.title, to.title) && from.seconds == question_.secondsOf(found);
    }

    /// The songs of the lost album that the found one may have, each with its only candidate there.
    std::vector<std::pair<Song, Song>> Pairs(const std::vector<Song>& lostSongs,
                                             std::size_t to) const {
        Titles there;
        for (const Song found : foundIn_.at(to)) {
            if (!isTaken_[found]) there.emplace(foundHashes_[found], found);
        }
        std::vector<std::pair<Song, Song>> pairs;
        std::map<Song, std::size_t> uses;
        for (const Song lost : lostSongs) {
            if (answer_.becomes[lost]) continue;
            std::vector<Song> candidates;
            const auto [first, last] = there.equal_range(lostHashes_[lost]);
            for (auto at = first; at != last; ++at) {
                if (MayBe(lost, at->second)) candidates.push_back(at->second);
            }
            if (candidates.size() != 1) continue;
            pairs.emplace_back(lost, candidates.front());
            ++uses[candidates.front()];
        }
        std::erase_if(pairs, [&](const auto& pair) { return uses[pair.second] > 1; });
        return pairs;
    }

    std::size_t AlreadyGone(const std::vector<Song>& lostSongs, std::size_t to) const {
        return static_cast<std::size_t>(std::ranges::count_if(lostSongs, [&](Song lost) {
            const auto& found = answer_.becomes[lost];
            return found && question_.found[*found].album == to;
        }));
    }

    void MatchTitles(Kin kin) {
        std::vector<std::pair<Song, Song>> proposals;
        std::map<Song, std::size_t> ofLost, ofFound;
        for (const auto& [album, songs] : lostFrom_) {
            for (const std::size_t to : Candidates(album, songs, kin)) {
                const std::vector<std::pair<Song, Song>> pairs = Pairs(songs, to);
                const std::size_t gone = pairs.size() + AlreadyGone(songs, to);
                const std::size_t others = question_.lostAlbums[album].tracks - 1;
                if (pairs.empty() || 2 * (gone - 1) <= others) continue;
                for (const auto& [lost, found] : pairs) {
                    proposals.emplace_back(lost, found);
                    ++ofLost[lost];
                    ++ofFound[found];
                }
            }
        }
        for (const auto& [lost, found] : proposals) {
            if (ofLost[lost] == 1 && ofFound[found] == 1) Take(lost, found);
        }
    }

    const TextRules& rules_;
    const MoveQuestion& question_;
    std::vector<std::uint32_t> lostHashes_, foundHashes_;
    std::unordered_map<std::uint32_t, std::vector<Song>> titles_;  ///< of found songs
    std::map<std::size_t, std::vector<Song>> foundIn_, lostFrom_;  ///< by album
    std::vector<bool> isTaken_;
    std::vector<Twins> twins_;
    MoveAnswer answer_;
};

}  // namespace

MoveAnswer MatchMoves(const TextRules& rules, const MoveQuestion& question) {
    return Matching(rules, question).Perform();
}

}  // namespace quillon
