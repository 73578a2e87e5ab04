#include "jet/storage/system_file.h"

#include "jet/error.h"

namespace jet::storage {

namespace {

Opening OpeningFor(FileAccess access) {
    switch (access) {
        case FileAccess::Read:
            return Opening::Read;
        case FileAccess::ReadWrite:
            return Opening::ReadWrite;
        case FileAccess::Replace:
            return Opening::New;
    }
    return Opening::Read;
}

}  // namespace

void RequirePlain(const FileFacts& facts, const std::filesystem::path& path) {
    if (facts.otherKind.empty()) return;
    throw Error(ErrorKind::Io, path.string() + " is " + std::string(facts.otherKind) +
                                   " and not a plain file; it is neither read nor written.");
}

Descriptor OpenPlainFile(const std::filesystem::path& path, Opening opening,
                         std::string_view verb) {
    // Looked at before, because opening alone can have an effect on a device, and afterwards,
    // because the name may have got another meaning in between.
    if (const auto facts = FactsOfName(path)) RequirePlain(*facts, path);
    Descriptor file = OpenName(path, opening, verb);
    RequirePlain(FactsOf(file, path), path);
    return file;
}

std::size_t SystemFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return ReadFrom(descriptor_, offset, bytes, path_);
}

void SystemFile::WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
    WriteTo(descriptor_, offset, bytes, path_);
}

FileFacts SystemFile::Facts() {
    return FactsOf(descriptor_, path_);
}

LockResult SystemFile::Lock() {
    return TakeLock(descriptor_, DatabaseLock, path_);
}

std::unique_ptr<File> SystemFileSystem::Open(const std::filesystem::path& path, FileAccess access) {
    const bool replaces = access == FileAccess::Replace;
    // A new file each time: what else has the old one's name as a hard link keeps its content.
    if (replaces) Remove(path);
    return FileOf(OpenPlainFile(path, OpeningFor(access), replaces ? "create" : "open"), path);
}

bool SystemFileSystem::Exists(const std::filesystem::path& path) {
    return FactsOfName(path).has_value();
}

std::optional<FileFacts> SystemFileSystem::Look(const std::filesystem::path& path) {
    return FactsOfTarget(path);
}

void SystemFileSystem::Remove(const std::filesystem::path& path) {
    const auto facts = FactsOfName(path);
    if (!facts) return;
    RequirePlain(*facts, path);
    RemoveName(path);
}

}  // namespace jet::storage
