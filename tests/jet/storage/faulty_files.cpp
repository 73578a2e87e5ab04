#include "tests/jet/storage/faulty_files.h"

#include <algorithm>
#include <utility>

#include "jet/error.h"
#include "tests/jet/storage/test_files.h"

namespace jet::storage::test {

class FaultyFileSystem::FaultyFile final : public File {
  public:
    FaultyFile(std::shared_ptr<FaultyFileSystem> system, std::filesystem::path path,
               std::unique_ptr<File> real)
        : system_(std::move(system)), path_(std::move(path)), real_(std::move(real)) {}

    std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        system_->CountLook();
        return real_->ReadAt(offset, bytes);
    }

    void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
        std::string before(bytes.size(), '\0');
        std::vector<std::uint8_t> buffer(bytes.size());
        before.resize(real_->ReadAt(offset, buffer));
        std::copy_n(buffer.begin(), before.size(), before.begin());
        const Write write{offset, before, real_->Size()};
        try {
            system_->Count(true);
        } catch (const Error&) {
            // A write that fails may have been done in part.
            const auto part = bytes.first(system_->random_() % (bytes.size() + 1));
            real_->WriteAt(offset, part);
            system_->unflushed_[path_].push_back(write);
            throw;
        }
        real_->WriteAt(offset, bytes);
        system_->unflushed_[path_].push_back(write);
    }

    void Reserve(std::uint64_t size) override {
        system_->Count(true);
        real_->Reserve(size);
    }

    void Sync() override {
        system_->Count(true);
        real_->Sync();
        system_->unflushed_.erase(path_);
        system_->unflushedNotes_.erase(path_);
    }

    FileFacts Facts() override {
        system_->CountLook();
        return real_->Facts();
    }

    LockResult Lock() override {
        system_->CountLook();
        return system_->simple_ ? LockResult::Unsupported : real_->Lock();
    }

    std::optional<std::string> Note() override {
        system_->CountLook();
        return system_->simple_ ? std::nullopt : real_->Note();
    }

    bool SetNote(const std::string& text) override {
        system_->Count(true);
        if (system_->simple_) return false;
        system_->unflushedNotes_.emplace(path_, real_->Note().value_or(""));
        return real_->SetNote(text);
    }

    bool KeepsNotes() override {
        system_->CountLook();
        return !system_->simple_ && real_->KeepsNotes();
    }

    std::optional<std::string> Remark() override { return real_->Remark(); }
    /// Never lost, which is the worst that can happen: all else may be.
    void SetRemark(const std::string& text) override {
        if (!system_->broken_) real_->SetRemark(text);
    }

  private:
    std::shared_ptr<FaultyFileSystem> system_;
    std::filesystem::path path_;
    std::unique_ptr<File> real_;
};

void FaultyFileSystem::FailAfter(std::size_t operations, Fault fault) {
    armed_ = true;
    broken_ = failed_ = false;
    left_ = operations;
    fault_ = fault;
}

void FaultyFileSystem::Count(bool isWrite) {
    if (broken_ && (fault_ == Fault::PowerLoss || isWrite)) {
        throw Error(ErrorKind::Io, "The disk is broken.");
    }
    if (!armed_ || left_-- != 0) return;
    armed_ = false;
    failed_ = true;
    broken_ = fault_ != Fault::OneError;
    throw Error(ErrorKind::Io, "The disk is broken.");
}

void FaultyFileSystem::FailLookAfter(std::size_t looks) {
    looksArmed_ = true;
    failed_ = false;
    looksLeft_ = looks;
}

void FaultyFileSystem::CountLook() {
    if (!looksArmed_ || looksLeft_-- != 0) return;
    looksArmed_ = false;
    failed_ = true;
    throw Error(ErrorKind::Io, "The disk is broken.");
}

void FaultyFileSystem::NoteName(const std::filesystem::path& name) {
    const bool existed = std::filesystem::exists(name);
    unflushedNames_.push_back({name, existed, existed ? outside::ContentOf(name) : std::string()});
}

void FaultyFileSystem::LosePower() {
    for (auto& [path, writes] : unflushed_) {
        if (!std::filesystem::exists(path)) continue;
        std::string content = outside::ContentOf(path);
        const bool all = random_() % 4 == 0, none = random_() % 4 == 0;
        for (auto write = writes.rbegin(); write != writes.rend(); ++write) {
            const bool lost = none || (!all && random_() % 2 == 0);
            if (!lost) continue;
            // Sectors of a write reach the disk or not, each on its own.
            for (std::size_t i = 0; i < write->before.size(); ++i) {
                const std::size_t at = write->offset + i;
                if (at < content.size() && (none || (at / 512) % 3 != 1)) {
                    content[at] = write->before[i];
                }
            }
            if (none) content.resize(write->sizeBefore);
        }
        WriteFile(path, content);
    }
    // Renamings and removals reach the disk in order; a random number of the last ones is lost.
    std::size_t lost = random_() % (unflushedNames_.size() + 1);
    for (auto change = unflushedNames_.rbegin(); lost-- > 0; ++change) {
        if (change->existed) {
            WriteFile(change->name, change->content);
        } else {
            std::filesystem::remove(change->name);
        }
    }
    for (const auto& [path, before] : unflushedNotes_) {
        if (random_() % 2 == 0 && std::filesystem::exists(path))
            real_->Open(path, FileAccess::ReadWrite)->SetNote(before);
    }
    unflushed_.clear();
    unflushedNames_.clear();
    unflushedNotes_.clear();
}

std::unique_ptr<File> FaultyFileSystem::Open(const std::filesystem::path& path, FileAccess access) {
    if (access == FileAccess::Replace) {
        Count(true);
    } else {
        CountLook();
    }
    return std::make_unique<FaultyFile>(shared_from_this(), path, real_->Open(path, access));
}

bool FaultyFileSystem::Exists(const std::filesystem::path& path) {
    CountLook();
    return real_->Exists(path);
}

std::optional<FileFacts> FaultyFileSystem::Look(const std::filesystem::path& path) {
    CountLook();
    return real_->Look(path);
}

std::filesystem::path FaultyFileSystem::Resolve(const std::filesystem::path& path) {
    CountLook();
    return real_->Resolve(path);
}

std::filesystem::path FaultyFileSystem::FullPath(const std::filesystem::path& path) {
    CountLook();
    return real_->FullPath(path);
}

void FaultyFileSystem::Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    Count(false);
    NoteName(from);
    NoteName(to);
    real_->Rename(from, to);
    unflushed_.erase(to);
    if (auto writes = unflushed_.extract(from)) {
        writes.key() = to;
        unflushed_.insert(std::move(writes));
    }
}

void FaultyFileSystem::Remove(const std::filesystem::path& path) {
    Count(false);
    NoteName(path);
    real_->Remove(path);
}

void FaultyFileSystem::SyncFolderOf(const std::filesystem::path& path) {
    Count(false);
    real_->SyncFolderOf(path);
    unflushedNames_.clear();
}

}  // namespace jet::storage::test
