#include "platform/portable/portable_files.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include "platform/ansi_text_reader.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/in_place.h"
#include "platform/portable/certain_facts.h"
#include "platform/portable/file_end.h"
#include "platform/portable/file_handle.h"
#include "platform/portable/local_file.h"
#include "platform/portable/safe_file.h"
#include "platform/portable/streams.h"
#include "platform/portable/system_failure.h"
#include "platform/portable/temporary_entry.h"
#include "platform/portable/text_batch.h"

namespace quillon {
namespace {

/// The folder that holds what the path means, and the name it is given there.
std::pair<WindowsPath, std::string> FolderAndName(const WindowsPath& path) {
    const std::size_t slash = path.rest.rfind('/');
    if (slash == std::string::npos) return {{path.root, ""}, path.rest};
    return {{path.root, path.rest.substr(0, slash)}, path.rest.substr(slash + 1)};
}

/// A file that has been opened, with what is known of it by then.
using OpenedFile = std::pair<FileHandle, FileFacts>;

OpenedFile WithFacts(int descriptor, std::string_view shown) {
    FileHandle file(descriptor, shown);
    const FileFacts facts = file.Facts();
    if (!facts.IsFile()) throw NoFileFailure(facts.kind, file.ShownPath());
    return {std::move(file), facts};
}

/// Opens a file as it is written where it exists so, which is the rule, with no other call.
OpenedFile OpenWithFacts(PathResolver& resolver, const WindowsPath& path,
                         FileUse use = FileUse::Read) {
    int descriptor = OpenLocal(resolver.Exact(path), use);
    if (descriptor < 0 && (errno == ENOENT || errno == ENOTDIR)) {
        descriptor = OpenLocal(resolver.Local(path), use);
    }
    const std::string shown = path.Text();
    if (descriptor < 0) throw SystemFailure(errno, shown, FailureNumber::FileNotFound);
    return WithFacts(descriptor, shown);
}

FileHandle OpenFile(PathResolver& resolver, const WindowsPath& path, FileUse use = FileUse::Read) {
    return OpenWithFacts(resolver, path, use).first;
}

/// The parts of a path; nothing for a text that is no path.
std::optional<WindowsPath> ParsedPath(std::string_view text) try {
    return ParseWindowsPath(text);
} catch (const Failure&) {
    return std::nullopt;
}

/// The same as CertainFacts(), without a look for what is known already.
std::optional<FileFacts> FactsAt(const LocalPlace& place, const std::string& shown) {
    if (place.facts || place.isFree) return place.facts;
    return CertainFacts(place.path, shown);
}

/// Copies a file that is open; `local` is the path of the copy, whose name is not durable yet.
void CopyOpenFile(const OpenedFile& source, const std::string& local, const std::string& shown,
                  SafeFile::Existing existing, const BytesWatch& watch) {
    SafeFile copy(local, shown, existing, source.second.rights);
    copy.WriteFrom(source.first, 0, watch);
    copy.SetModified(source.second.modified);
    copy.Sync();
    copy.TakeName();
}

void Unlink(const std::string& local, const std::string& shown) {
    if (const int error = RemoveFile(local); error != 0)
        throw SystemFailure(error, shown, FailureNumber::FileNotFound);
}

/// Stands for all files of a file system.
FileIdentity FileSystemOf(const FileHandle& file) {
    FileIdentity identity = file.Facts().identity;
    identity.number = 0;
    return identity;
}

}  // namespace

bool PortableFiles::Exists(std::string_view path, LocalKind kind) {
    const std::optional<WindowsPath> parsed = ParsedPath(path);
    if (!parsed || !resolver_.Drives().LocalFolder(parsed->root)) return false;
    const std::optional<FileFacts> facts = FactsAt(resolver_.Locate(*parsed), parsed->Text());
    return facts && facts->kind == kind;
}

bool PortableFiles::FolderExists(std::string_view path) {
    return Exists(path, LocalKind::Folder);
}

bool PortableFiles::FileExists(std::string_view path) {
    return Exists(path, LocalKind::File);
}

bool PortableFiles::IsSameFile(std::string_view path, std::string_view other) {
    if (!FileExists(path) || !FileExists(other)) return false;
    const auto one = CertainFacts(resolver_.Local(path), std::string(path));
    const auto two = CertainFacts(resolver_.Local(other), std::string(other));
    return one && two && one->identity == two->identity;
}

bool PortableFiles::IsWithin(std::string_view folder, std::string_view outer) {
    return FolderExists(folder) && FolderExists(outer) &&
           IsInside(resolver_.Local(folder), resolver_.Local(outer));
}

Listing<FolderEntry> PortableFiles::SubFolders(std::string_view folder) {
    const WindowsPath path = ParseWindowsPath(folder);
    return lister_.SubFolders(path, resolver_.Local(path), resolver_.LocalRoot(path));
}

Listing<FileEntry> PortableFiles::FilesIn(std::string_view folder) {
    const WindowsPath path = ParseWindowsPath(folder);
    return lister_.FilesIn(path, resolver_.Local(path));
}

FolderNames PortableFiles::NamesIn(std::string_view folder) try {
    return FolderLister::NamesIn(resolver_.Local(folder));
} catch (const Failure&) {
    return {};
}

FileEntry PortableFiles::GetFile(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const LocalPlace place = resolver_.Locate(parsed);
    std::optional<FileFacts> facts = place.facts;
    if (!facts) {
        facts = place.isFree ? std::nullopt : FactsOf(place.path);
        const int error = place.isFree ? ENOENT : errno;
        if (!facts) throw SystemFailure(error, parsed.Text(), FailureNumber::FileNotFound);
    }
    if (!facts->IsFile()) throw Failure(FailureNumber::FileNotFound, parsed.Text());
    const std::string name = NameOnDisk(place.path);
    return lister_.MakeFileEntry(FolderAndName(parsed).first.Child(name), name, *facts);
}

WindowsPath PortableFiles::AsOnDisk(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    return AsItIs(parsed, SpellingOnDisk(resolver_.Local(parsed)));
}

std::optional<std::string> PortableFiles::LocalPath(std::string_view path) try {
    return SpellingOnDisk(resolver_.Local(path));
} catch (const Failure& failure) {
    if (failure.Number() != FailureNumber::PathNotFound &&
        failure.Number() != FailureNumber::BadFileName)
        throw;
    return std::nullopt;
}

void PortableFiles::CreateFolder(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    if (const int error = MakeFolder(local); error != 0) throw SystemFailure(error, parsed.Text());
    NoteRenamed(local);
    resolver_.Index().Added(local);
}

void PortableFiles::CopyFile(std::string_view from, std::string_view to, bool overwrite) {
    Copy(from, to, overwrite, namesMayWait_ && !overwrite);
}

void PortableFiles::Copy(std::string_view from, std::string_view to, bool overwrite,
                         bool nameMayWait) {
    if (!nameMayWait) SyncNames();
    const OpenedFile source = OpenWithFacts(resolver_, ParseWindowsPath(from));
    const WindowsPath target = ParseWindowsPath(to);
    const std::string local = resolver_.Local(target);
    if (overwrite) {
        const std::optional<FileFacts> old = FactsOf(local);
        const bool isItself = old && old->identity == source.second.identity;
        if (isItself) throw SystemFailure(EACCES, target.Text());
    }
    RemoveLeftoversOnce(FolderOf(local));
    CopyOpenFile(source, local, target.Text(),
                 overwrite ? SafeFile::Existing::Replace : SafeFile::Existing::Refuse, copyWatch_);
    resolver_.Index().Added(local);
    waitingNames_.insert(FolderOf(local));
    if (!nameMayWait) SyncNames();
}

void PortableFiles::SyncNames() {
    while (!waitingNames_.empty())
        SyncFolder(waitingNames_.extract(waitingNames_.begin()).value());
}

void PortableFiles::CopyFolder(std::string_view from, std::string_view to) {
    SyncNames();
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    const std::string local = resolver_.Local(target);
    if (!FolderExists(source.Text())) throw Failure(FailureNumber::PathNotFound, source.Text());
    if (target.rest.empty() || FactsOf(local))
        throw Failure(FailureNumber::FileAlreadyExists, target.Text());
    // A copy into the folder's own inside would never end.
    if (IsInside(FolderOf(local), resolver_.Local(source)))
        throw Failure(FailureNumber::PermissionDenied, target.Text());
    RemoveLeftoversOnce(FolderOf(local));
    SafeFolder copy(local, target.Text());
    CopyInto(copy, source.Text(), "", target.Text());
    copy.Commit();
    resolver_.Index().Added(local);
}

/// A link that leads nowhere is told by the listing and left out: there is nothing to copy. `inner`
/// is the path below the copy, `shown` the Windows path.
void PortableFiles::CopyInto(SafeFolder& copy, const std::string& from, const std::string& inner,
                             const std::string& shown) {
    const auto requireSeen = [this](const auto& listing) {
        for (const std::string& path : listing.unseen) {
            if (!LeadsNowhere(resolver_.Local(path)))
                throw Failure(FailureNumber::PathFileAccess, path);
        }
    };
    const auto add = [&](const std::string& path) {
        const std::string name = path.substr(path.rfind('\\') + 1);
        copy.AddFile(OpenFile(resolver_, ParseWindowsPath(path)), inner + name, shown + '\\' + name,
                     copyWatch_);
    };
    Listing<FileEntry> files = FilesIn(from);
    for (const FileEntry& file : files)
        add(file.path);
    // A copy has room for both of two names that differ in letter case alone.
    std::erase_if(files.unseen, [&](const std::string& path) {
        const bool isTwin = std::ranges::any_of(files.entries, [&](const FileEntry& file) {
            return EqualIgnoringCase(file.path, path);
        });
        if (isTwin) add(path);
        return isTwin;
    });
    requireSeen(files);
    const Listing<FolderEntry> folders = SubFolders(from);
    requireSeen(folders);
    for (const FolderEntry& folder : folders) {
        const std::string name = inner + folder.name, shownName = shown + '\\' + folder.name;
        copy.AddFolder(name, shownName);
        CopyInto(copy, folder.path, name + '/', shownName);
    }
}

void PortableFiles::DeleteFile(std::string_view path) {
    SyncNames();
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    const std::string shown = parsed.Text();
    const std::optional<FileFacts> facts = CertainFacts(local, shown);
    if (!facts || !facts->IsFile()) throw Failure(FailureNumber::FileNotFound, shown);
    // A write-protected file is one that its owner wants to keep, as on Windows.
    if (!MayWrite(local)) throw SystemFailure(errno, shown);
    if (!takeOver_ || !takeOver_(local, AsItIs(parsed, SpellingOnDisk(local))))
        Unlink(local, shown);
    NoteRenamed(local);
    resolver_.Index().Removed(local);
}

void PortableFiles::DeleteFolder(std::string_view path) {
    SyncNames();
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    if (!FolderExists(parsed.Text())) throw Failure(FailureNumber::PathNotFound, parsed.Text());
    if (parsed.rest.empty() || !MayWrite(FolderOf(local)) || HoldsProtectedFile(local)) {
        throw Failure(FailureNumber::PermissionDenied, parsed.Text());
    }
    lister_.ForgetListed();
    int error = RemoveAll(local);
    // It says nothing of a folder that turned out to be unreadable in the middle.
    if (error == 0 && FactsOfLink(local)) error = ENOTEMPTY;
    if (error != 0) throw SystemFailure(error, parsed.Text());
    NoteRenamed(local);
    resolver_.Index().Removed(local);
}

void PortableFiles::Discard(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = resolver_.Local(parsed);
    if (const int error = RemoveEntry(local); error != 0)
        throw SystemFailure(error, parsed.Text(), FailureNumber::FileNotFound);
    NoteRenamed(local);
    resolver_.Index().Removed(local);
}

/// The path in the spelling that the disk has.
WindowsPath PortableFiles::AsItIs(const WindowsPath& path, const std::string& local) const {
    return {path.root, local.substr(resolver_.LocalRoot(path).size() + 1)};
}

void PortableFiles::MoveFile(std::string_view from, std::string_view to) {
    SyncNames();
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    const std::string oldPath = SpellingOnDisk(resolver_.Local(source));
    std::string newPath = SpellingOnDisk(resolver_.Local(target));
    if (!FileExists(from)) throw Failure(FailureNumber::FileNotFound, source.Text());
    if (newPath == oldPath) {
        // The same file in the target's spelling: a change of letter case, or nothing at all.
        newPath = FolderOf(oldPath) + FolderAndName(target).second;
        const int error = newPath == oldPath ? 0 : RenameOver(oldPath, newPath);
        if (error != 0) throw SystemFailure(error, target.Text());
    } else if (FactsOf(newPath)) {
        throw Failure(FailureNumber::FileAlreadyExists, target.Text());
    } else {
        const int error = RenameToFreeName(oldPath, newPath);
        if (error == EXDEV) {
            // Between two volumes a file is moved by way of a copy.
            Copy(from, to, false, false);
            Unlink(oldPath, source.Text());
        } else if (error != 0) {
            throw SystemFailure(error, target.Text());
        }
    }
    NoteRenamed(oldPath);
    NoteRenamed(newPath);
    resolver_.Index().Removed(oldPath);
    resolver_.Index().Added(newPath);
}

void PortableFiles::MoveFolder(std::string_view from, std::string_view to) {
    SyncNames();
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    const std::string oldPath = resolver_.Local(source);
    const std::string newPath = resolver_.Local(target);
    if (!FolderExists(source.Text())) throw Failure(FailureNumber::PathNotFound, source.Text());
    if (FactsOf(newPath)) throw Failure(FailureNumber::FileAlreadyExists, target.Text());
    const int error = RenameToFreeName(oldPath, newPath);
    if (error != 0) throw SystemFailure(error, target.Text());
    NoteRenamed(oldPath);
    NoteRenamed(newPath);
    resolver_.Index().Removed(oldPath);
    lister_.ForgetListed();
    resolver_.Index().Added(newPath);
}

std::unique_ptr<TextReader> PortableFiles::OpenText(std::string_view path) {
    return std::make_unique<AnsiTextReader>(OpenBinary(path), ParseWindowsPath(path).Text());
}

std::string PortableFiles::LocalToWrite(const WindowsPath& path) {
    std::string local = resolver_.Local(path);
    RemoveLeftoversOnce(FolderOf(local));
    return local;
}

std::unique_ptr<TextWriter> PortableFiles::CreateText(std::string_view path,
                                                      SafeFile::Existing existing) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string local = LocalToWrite(parsed);
    auto writer = std::make_unique<AnsiTextWriter>(
        local, parsed.Text(), existing, [this] { SyncNames(); },
        [this, local] { resolver_.Index().Added(local); });
    // Else the next look at the folder would read it anew.
    resolver_.Index().MadeBeside(local);
    return writer;
}

std::unique_ptr<TextBatch> PortableFiles::CreateTexts(TextBatch::Done done) {
    return std::make_unique<PortableTextBatch>(
        [this](const WindowsPath& path) { return LocalToWrite(path); }, [this] { SyncNames(); },
        resolver_.Index(), std::move(done));
}

std::unique_ptr<BinaryReader> PortableFiles::OpenBinary(std::string_view path) {
    const int listed = lister_.OpenListed(path);
    if (listed < 0 && errno != ENOENT && errno != ENOTDIR)
        throw SystemFailure(errno, std::string(path), FailureNumber::FileNotFound);
    auto [file, facts] =
        listed >= 0 ? WithFacts(listed, path) : OpenWithFacts(resolver_, ParseWindowsPath(path));
    return std::make_unique<PositionedReader>(std::move(file), facts.size);
}

void PortableFiles::WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                             std::span<const std::uint8_t> bytes) {
    SyncNames();
    const WindowsPath parsed = ParseWindowsPath(path);
    const FileHandle file = OpenFile(resolver_, parsed, FileUse::ReadAndWrite);
    WriteFileEnd(file, seen, position, bytes);
    NoteWrittenOver(file, resolver_.Local(parsed));
}

void PortableFiles::NoteWrittenOver(const FileHandle& file, std::string local) {
    writtenOver_[FlushTakesAll() ? FileSystemOf(file) : file.Facts().identity] = std::move(local);
}

void PortableFiles::SyncChanges() {
    SyncNames();
    std::set<FileIdentity> flushed;
    while (!writtenOver_.empty()) {
        const std::string local = writtenOver_.extract(writtenOver_.begin()).mapped();
        int descriptor = OpenLocal(local, FileUse::ReadAndWrite);
        // It may have another name by now.
        if (descriptor < 0) descriptor = OpenLocal(FolderOf(local), FileUse::Read);
        if (descriptor < 0) throw SystemFailure(errno, local);
        const FileHandle file(descriptor, local);
        const int error = FlushTakesAll() ? file.FlushAll() : file.Flush();
        if (error != 0) throw SystemFailure(error, local);
        flushed.insert(FileSystemOf(file));
    }
    while (!renamedIn_.empty()) {
        const std::string folder = renamedIn_.extract(renamedIn_.begin()).value();
        if (FlushTakesAll())
            FlushAllOf(folder, flushed);
        else
            SyncFolder(folder);
    }
}

/// One flush serves all folders of a file system.
void PortableFiles::FlushAllOf(const std::string& folder, std::set<FileIdentity>& flushed) {
    const int descriptor = OpenLocal(folder, FileUse::Read);
    // A folder that is gone has been noted where it was.
    if (descriptor < 0 && (errno == ENOENT || errno == ENOTDIR)) return;
    if (descriptor < 0) throw SystemFailure(errno, folder);
    const FileHandle handle(descriptor, folder);
    if (!flushed.insert(FileSystemOf(handle)).second) return;
    if (const int error = handle.FlushAll(); error != 0) throw SystemFailure(error, folder);
}

void PortableFiles::ReplaceBytes(std::string_view path, const FilePiece& seen,
                                 std::span<const std::uint8_t> bytes) {
    const WindowsPath parsed = ParseWindowsPath(path);
    FileHandle file = OpenFile(resolver_, parsed, FileUse::ReadAndWrite);
    if (bytes.size() == seen.bytes.size() && bytes.size() <= MostInPlace) {
        ReplaceInPlace(file, seen, bytes);
        return NoteWrittenOver(file, resolver_.Local(parsed));
    }
    const std::string local = LocalToWrite(parsed);
    ReplaceByCopy(std::move(file), local, seen, bytes);
    resolver_.Index().Added(local);
}

std::int64_t PortableFiles::ExactTimeOf(std::string_view path) {
    const std::optional<FileFacts> facts = FactsOf(resolver_.Local(path));
    return facts ? facts->modified.InNanoseconds() : 0;
}

void PortableFiles::SetExactTime(std::string_view path, std::int64_t time) {
    constexpr std::int64_t InASecond = 1'000'000'000;
    std::int64_t seconds = time / InASecond, rest = time % InASecond;
    if (rest < 0) {
        --seconds;
        rest += InASecond;
    }
    const FileHandle file = OpenFile(resolver_, ParseWindowsPath(path), FileUse::ReadAndWrite);
    file.SetModified({seconds, static_cast<std::int32_t>(rest)});
}

void PortableFiles::RemoveUnfinished(std::string_view folder) {
    if (FolderMayExist(*this, folder)) RemoveLeftoversOnce(resolver_.Local(folder) + '/');
}

void PortableFiles::RemoveLeftoversOnce(const std::string& folder) {
    if (withoutLeftovers_.insert(folder).second) RemoveAbandoned(folder);
}

}  // namespace quillon
