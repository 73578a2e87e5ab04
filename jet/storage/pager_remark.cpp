// What is remembered of a file that was looked over.
#include <algorithm>
#include <string>

#include "jet/storage/format/fingerprint.h"
#include "jet/storage/pager.h"
#include "jet/value.h"

namespace jet::storage {

namespace {

/// To be raised when a look finds more than before.
constexpr int LookVersion = 1;
/// Smaller files are looked over in no time.
constexpr PageNumber FewestPages = 256;
/// Pages read in one call.
constexpr std::size_t PagesAtOnce = 64;

}  // namespace

bool Pager::IsWorthARemark() const {
    return writable_ && pageCount_ >= FewestPages && !journal_.reader;
}

bool Pager::IsKnownWhole() {
    if (!IsWorthARemark()) return false;
    const std::optional<std::string> remark = file_->Remark();
    isWhole_ = remark && *remark == RemarkOfContent();
    return isWhole_;
}

void Pager::RemarkThatWhole() {
    isWhole_ = true;
    if (IsWorthARemark()) file_->SetRemark(RemarkOfContent());
}

/// What was whole and has been changed by commits alone is whole. The number is that of the content
/// that is meant to be there: with any other one, the file is looked over again.
void Pager::RenewRemark() {
    const auto isKnown = [](std::uint64_t sum) { return sum != 0; };
    if (isWhole_ && IsWorthARemark() && sums_.size() >= pageCount_ &&
        std::all_of(sums_.begin(), sums_.begin() + pageCount_, isKnown))
        file_->SetRemark(RemarkOfContent());
}

/// Pages that have been read already count as they were then: those have been looked over.
std::string Pager::RemarkOfContent() {
    if (sums_.size() < pageCount_) sums_.resize(pageCount_);
    Bytes run;  // of use at the first time alone: commits know the pages' sums
    for (std::size_t first = 0; first < pageCount_; first += PagesAtOnce) {
        const std::size_t end = std::min<std::size_t>(first + PagesAtOnce, pageCount_);
        const auto isRead = [this](std::size_t page) { return sums_[page] != 0; };
        std::size_t known = first;
        while (known < end && isRead(known))
            ++known;
        if (known == end) continue;
        run.resize(PagesAtOnce * PageSize);
        const std::size_t size = file_->ReadAt(std::uint64_t{first} * PageSize, run);
        for (std::size_t page = known; page < end; ++page) {
            const std::size_t at = (page - first) * PageSize;
            if (!isRead(page) && at + PageSize <= size)
                sums_[page] = Fingerprint(std::span(run).subspan(at, PageSize));
        }
    }
    const std::uint64_t all = Fingerprint(std::span(
        reinterpret_cast<const std::uint8_t*>(sums_.data()), pageCount_ * sizeof(sums_.front())));
    return std::to_string(LookVersion) + ' ' + std::to_string(pageCount_) + ' ' +
           std::to_string(all);
}

}  // namespace jet::storage
