#include "reconcile/moved_up.h"

#include <unordered_map>
#include <unordered_set>

namespace quillon {
namespace {

class Settling {
  public:
    Settling(std::span<TrackRow* const> lost, std::span<TrackRow* const> owners,
             std::vector<std::optional<std::size_t>>& becomes)
        : lost_(lost), owners_(owners), becomes_(becomes) {}

    std::vector<PushedOut> Perform() {
        while (TakeOut()) {
        }
        std::vector<PushedOut> pushed;
        Look();
        for (const auto& [owner, taker] : takers_)
            if (!moving_.contains(owner)) pushed.push_back({owner, PathThatBecomesFree(owner)});
        return pushed;
    }

  private:
    /// Who moves, and who gets the files of which rows.
    void Look() {
        takers_.clear();
        moving_.clear();
        for (std::size_t i = 0; i < lost_.size(); ++i) {
            if (!becomes_[i]) continue;
            moving_.insert(lost_[i]);
            if (TrackRow* const owner = owners_[*becomes_[i]]) takers_[owner] = lost_[i];
        }
    }

    /// Whether any move had to be taken out.
    bool TakeOut() {
        Look();
        bool isAny = false;
        for (std::size_t i = 0; i < lost_.size(); ++i) {
            TrackRow* const owner = becomes_[i] ? owners_[*becomes_[i]] : nullptr;
            // One whose own file has gone to a known song has been moved up with that.
            if (owner == nullptr || moving_.contains(owner) || takers_.contains(lost_[i])) continue;
            becomes_[i].reset();
            isAny = true;
        }
        return isAny;
    }

    std::string PathThatBecomesFree(TrackRow* owner) const {
        const TrackRow* last = owner;
        for (auto taker = takers_.find(owner); taker != takers_.end();
             taker = takers_.find(taker->second))
            last = taker->second;
        return last->soundFile;
    }

    std::span<TrackRow* const> lost_, owners_;
    std::vector<std::optional<std::size_t>>& becomes_;
    std::unordered_map<TrackRow*, TrackRow*> takers_;  ///< by the row whose file they get
    std::unordered_set<TrackRow*> moving_;
};

}  // namespace

std::vector<PushedOut> SettleOwners(std::span<TrackRow* const> lost,
                                    std::span<TrackRow* const> owners,
                                    std::vector<std::optional<std::size_t>>& becomes) {
    return Settling(lost, owners, becomes).Perform();
}

}  // namespace quillon
