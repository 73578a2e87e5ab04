#pragma once

#include <ctime>
#include <sys/stat.h>

#include "platform/portable/local_file.h"

namespace quillon {

inline LocalKind KindOf(mode_t mode) {
    if (S_ISREG(mode)) return LocalKind::File;
    if (S_ISDIR(mode)) return LocalKind::Folder;
    if (S_ISLNK(mode)) return LocalKind::Link;
    if (S_ISFIFO(mode)) return LocalKind::Pipe;
    if (S_ISSOCK(mode)) return LocalKind::Socket;
    return LocalKind::Device;
}

inline FileTime TimeOf(const std::timespec& time) {
    return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
}

inline FileFacts FactsFrom(const struct stat& facts) {
    return {.kind = KindOf(facts.st_mode),
            .size = static_cast<std::uint64_t>(facts.st_size),
            .modified = TimeOf(facts.st_mtim),
            .changed = TimeOf(facts.st_ctim),
            .identity = {facts.st_dev, facts.st_ino},
            .rights = facts.st_mode & 07777U,
            .owner = facts.st_uid,
            .group = facts.st_gid};
}

}  // namespace quillon
