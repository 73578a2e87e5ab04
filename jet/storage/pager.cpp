#include "jet/storage/pager.h"

#include <algorithm>
#include <string>
#include <utility>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/format/fingerprint.h"

namespace jet::storage {

namespace {

constexpr std::size_t CacheBytes = std::size_t{16} << 20;
constexpr std::size_t MaxUnchanged = CacheBytes / PageSize;
constexpr std::uint64_t MaxFileSize = std::uint64_t{Pager::MostPages} * PageSize;

}  // namespace

Pager::Pager(std::shared_ptr<FileSystem> files, std::filesystem::path path, bool writable)
    : files_(std::move(files)),
      openedAs_(std::move(path)),
      path_(files_->Resolve(openedAs_)),
      writable_(writable),
      file_(files_->Open(path_, writable ? FileAccess::ReadWrite : FileAccess::Read)),
      globalMap_(*this, [this] { return Append(); }) {
    if (writable_) TakeForWriting();
    facts_ = file_->Facts();
    journal_ = FindJournal(*files_, *file_, path_);
    if (journal_.reader) {
        TakeJournal();
    } else {
        Measure();
    }
}

void Pager::Measure() {
    const std::uint64_t size = facts_->size;
    if (size % PageSize != 0) {
        throw Error(ErrorKind::Damaged,
                    path_.string() + " is damaged: its size of " + std::to_string(size) +
                        " bytes is not a whole number of pages; it seems cut off.");
    }
    if (size > MaxFileSize) {
        throw Error(ErrorKind::Damaged,
                    path_.string() + " is damaged: it is larger than a database can be.");
    }
    pageCount_ = static_cast<PageNumber>(size / PageSize);
}

std::shared_ptr<const Page> Pager::Read(PageNumber page) {
    return Fetch(page).page;
}

Page& Pager::Modify(PageNumber page) {
    RequireWritable();
    Frame& frame = Fetch(page);
    Save(frame);
    MarkChanged(frame);
    return *frame.page;
}

PageNumber Pager::Allocate() {
    const PageNumber page = globalMap_.Take();
    Modify(page).fill(0);
    return page;
}

void Pager::Free(PageNumber page) {
    globalMap_.Release(page);
}

void Pager::RequireWritable() {
    if (!writable_) throw Error(ErrorKind::ReadOnly, path_.string() + " is open for reading only.");
    if (!recovered_) Recover();
}

PageNumber Pager::Append() {
    RequireWritable();
    if ((std::uint64_t{pageCount_} + 1) * PageSize > MaxFileSize) {
        throw Error(ErrorKind::Io, path_.string() + " has reached the largest size of a database.");
    }
    if (changed_.empty()) oldestChange_ = std::chrono::steady_clock::now();
    const PageNumber page = pageCount_++;
    Frame& frame = AddFrame(changed_, page, std::make_shared<Page>());
    frame.page->fill(0);
    frame.changed = true;
    frame.savedFor = change_;  // undone by shortening the file
    return page;
}

Pager::Frame& Pager::Fetch(PageNumber number) {
    if (Frame* const frame = FindFrame(number)) {
        Frames& list = frame->changed ? changed_ : unchanged_;
        list.splice(list.begin(), list, frame->place);
        return *frame;
    }
    if (number >= pageCount_) {
        ThrowDamaged("it ends too early: page " + std::to_string(number) +
                     " is in use, but there are " + std::to_string(pageCount_) + " pages");
    }
    auto page = std::make_shared_for_overwrite<Page>();
    if (file_->ReadAt(std::uint64_t{number} * PageSize, *page) != PageSize) {
        throw Error(ErrorKind::Io, "Cannot read " + path_.string() + ": page " +
                                       std::to_string(number) + " has vanished.");
    }
    // The first look counts: what somebody else has changed since then is noticed by a commit.
    if (writable_ && SumOf(number) == 0) SumOf(number) = Fingerprint(*page);
    ShrinkCache();
    return AddFrame(unchanged_, number, std::move(page));
}

void Pager::ShrinkCache() {
    while (unchanged_.size() >= MaxUnchanged)
        DropFrame(unchanged_.back().number);
}

Pager::Frame& Pager::AddFrame(Frames& frames, PageNumber number, std::shared_ptr<Page> page) {
    if (number >= frames_.size()) frames_.resize(std::max<std::size_t>(number + 1, pageCount_));
    Frame& frame = frames.emplace_front(Frame{.number = number, .page = std::move(page)});
    frame.place = frames.begin();
    frames_[number] = &frame;
    return frame;
}

void Pager::DropFrame(PageNumber number) {
    Frame* const frame = FindFrame(number);
    if (frame == nullptr) return;
    frames_[number] = nullptr;
    Frames& list = frame->changed ? changed_ : unchanged_;
    list.erase(frame->place);
}

void Pager::MarkChanged(Frame& frame) {
    if (frame.changed) return;
    if (changed_.empty()) oldestChange_ = std::chrono::steady_clock::now();
    frame.changed = true;
    changed_.splice(changed_.begin(), unchanged_, frame.place);
}

void Pager::Save(Frame& frame) {
    if (!inChange_ || frame.savedFor == change_) return;
    auto content = std::unique_ptr<Page>();
    if (spare_.empty()) {
        content = std::make_unique<Page>();
    } else {
        content = std::move(spare_.back());
        spare_.pop_back();
    }
    *content = *frame.page;
    before_.push_back({frame.number, frame.changed, std::move(content)});
    frame.savedFor = change_;
}

void Pager::Undo() {
    for (auto& before : before_) {
        Frame& frame = *FindFrame(before.number);
        *frame.page = *before.content;
        if (frame.changed && !before.changed) {
            frame.changed = false;
            unchanged_.splice(unchanged_.begin(), changed_, frame.place);
        }
    }
    for (PageNumber page = pageCountBefore_; page < pageCount_; ++page)
        DropFrame(page);
    pageCount_ = pageCountBefore_;
    globalMap_.Forget();
}

Pager::Change::Change(Pager& pager) : pager_(pager) {
    ++pager_.change_;
    pager_.inChange_ = true;
    pager_.pageCountBefore_ = pager_.pageCount_;
}

Pager::Change::~Change() {
    if (!open_) return;
    pager_.Undo();
    Keep();
}

void Pager::Change::Keep() {
    open_ = false;
    pager_.inChange_ = false;
    for (auto& before : pager_.before_)
        pager_.spare_.push_back(std::move(before.content));
    pager_.before_.clear();
}

}  // namespace jet::storage
