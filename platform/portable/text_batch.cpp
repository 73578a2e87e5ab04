#include "platform/portable/text_batch.h"

#include <map>
#include <optional>
#include <utility>

#include "platform/failure.h"
#include "platform/portable/local_file.h"

namespace quillon {
namespace {

/// What failed, if anything did.
template <typename Work>
std::optional<Failure> FailureOf(Work work) {
    try {
        work();
        return std::nullopt;
    } catch (const Failure& failure) {
        return failure;
    }
}

}  // namespace

PortableTextBatch::PortableTextBatch(std::function<std::string(const WindowsPath&)> localOf,
                                     std::function<void()> closing, FolderIndex& index, Done done)
    : localOf_(std::move(localOf)),
      closing_(std::move(closing)),
      index_(index),
      done_(std::move(done)) {}

void PortableTextBatch::Write(std::string_view path, std::string_view bytes) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = localOf_(parsed);
    Waiting& waiting = waiting_.emplace_back(local, parsed, static_cast<unsigned>(waiting_.size()));
    // Else the next look at the folder would read it anew.
    index_.MadeBeside(local);
    const std::optional<Failure> failure = FailureOf([&] { waiting.file.Write(bytes); });
    if (failure) {
        waiting_.pop_back();
        throw Failure(*failure);
    }
    if (waiting_.size() >= MostWaiting) Close();
}

void PortableTextBatch::Close() {
    closing_();
    // A list that is a symbolic link may be on another file system.
    std::map<std::string, std::optional<Failure>> folders;
    for (const Waiting& waiting : waiting_) {
        const auto [folder, isNew] = folders.try_emplace(waiting.file.Folder());
        if (isNew && FlushTakesAll())
            folder->second = FailureOf([&] { waiting.file.SyncFileSystem(); });
    }
    for (Waiting& waiting : waiting_) {
        std::optional<Failure> failure = folders.at(waiting.file.Folder());
        if (!failure && !FlushTakesAll()) failure = FailureOf([&] { waiting.file.Sync(); });
        if (!failure) failure = FailureOf([&] { waiting.file.TakeName(); });
        if (!failure) index_.Added(waiting.local);
        done_(failure ? &*failure : nullptr);
    }
    for (const auto& [folder, failure] : folders) {
        if (!failure) SyncFolder(folder);
    }
    waiting_.clear();
}

}  // namespace quillon
