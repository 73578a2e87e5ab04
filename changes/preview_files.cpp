#include "changes/preview_files.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "changes/preview_texts.h"
#include "platform/ansi_text_reader.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

/// What changes something, and what opens files. The questions are in preview_look.cpp.
namespace quillon {
namespace {

bool HasEnd(BinaryReader& file, const FileEnd& seen) {
    if (file.Size() != seen.size || seen.bytes.size() > seen.size) return false;
    file.SetPosition(seen.size - seen.bytes.size());
    return file.Read(seen.bytes.size()) == seen.bytes;
}

}  // namespace

/// Of what is not there: a file on the way is none that could hold it.
void PreviewFiles::RefuseMissing(const WindowsPath& path) {
    for (WindowsPath above = path; !above.rest.empty();) {
        above = FolderAround(above);
        if (HasFile(above)) throw Failure(FailureNumber::PathNotFound, path.Text());
    }
    throw Failure(FailureNumber::FileNotFound, path.Text());
}

void PreviewFiles::RequireFolderAround(const WindowsPath& path) {
    if (path.rest.empty() || !HasFolder(FolderAround(path)))
        throw Failure(FailureNumber::PathNotFound, path.Text());
}

void PreviewFiles::RequireFreeName(const WindowsPath& path) {
    if (path.rest.empty() || Has(path))
        throw Failure(FailureNumber::FileAlreadyExists, path.Text());
}

void PreviewFiles::RequireWritable(const Place& place, const WindowsPath& path) const {
    if (place.ground.empty() || !rights_.mayWrite || rights_.mayWrite(place.ground)) return;
    throw Failure(FailureNumber::PermissionDenied, path.Text());
}

/// Names in a folder can come and go where the folder may be written.
void PreviewFiles::RequireWritableAround(const WindowsPath& path) {
    RequireWritable(tree_.Find(FolderAround(path)), path);
}

/// Of a file that is going to be written whole.
void PreviewFiles::RequireMayReplace(const WindowsPath& path) {
    if (path.rest.empty() || HasFolder(path)) {
        throw Failure(FailureNumber::PermissionDenied,
                      path.Text() + " (this is a folder and no file)");
    }
    if (HasFile(path)) RequireWritable(tree_.Find(path), path);
    RequireFolderAround(path);
    RequireWritableAround(path);
}

/// A new name for the content of a file, which can be read.
std::unique_ptr<PreviewNode> PreviewFiles::FileNode(const WindowsPath& path) {
    const Place place = tree_.Find(path);
    if (place.IsFile()) return place.node->Copy();
    const std::uint64_t size = OpenBinary(path.Text())->Size();
    auto node = std::make_unique<Node>();
    const FileEntry entry = ground_.GetFile(place.ground);
    node->kind = Node::Kind::File;
    node->name = entry.name;
    node->content.ground = place.ground;
    node->content.kept = size;
    node->modified = entry.modified;
    return node;
}

/// What is there, off its place.
std::unique_ptr<PreviewNode> PreviewFiles::Take(const WindowsPath& path) {
    const Place place = tree_.Find(path);
    const auto kind = HasFolder(path) ? Node::Kind::Folder : Node::Kind::File;
    return tree_.Take(path, kind, place.ground);
}

void PreviewFiles::PutWritten(const WindowsPath& path, std::string bytes,
                              std::optional<DateTime> modified) {
    auto node = std::make_unique<Node>();
    node->kind = Node::Kind::File;
    node->name = HasFile(path) ? GetFile(path.Text()).name : NameIn(path);
    node->content.added = std::make_shared<const std::string>(std::move(bytes));
    node->modified = modified.value_or(clock_.Now());
    tree_.Put(path, std::move(node));
}

void PreviewFiles::CreateFolder(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    RequireFreeName(parsed);
    RequireFolderAround(parsed);
    RequireWritableAround(parsed);
    auto node = std::make_unique<Node>();
    node->kind = Node::Kind::Folder;
    node->name = NameIn(parsed);
    tree_.Put(parsed, std::move(node));
}

void PreviewFiles::CopyFile(std::string_view from, std::string_view to, bool overwrite) {
    std::unique_ptr<Node> copy = FileNode(ParseWindowsPath(from));
    const WindowsPath target = ParseWindowsPath(to);
    if (overwrite && IsSameFile(from, to))
        throw Failure(FailureNumber::PermissionDenied, target.Text());
    if (!overwrite) RequireFreeName(target);
    RequireMayReplace(target);
    copy->name = HasFile(target) ? GetFile(to).name : NameIn(target);
    tree_.Put(target, std::move(copy));
}

void PreviewFiles::CopyFolder(std::string_view from, std::string_view to) {
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    if (!HasFolder(source)) throw Failure(FailureNumber::PathNotFound, source.Text());
    RequireFreeName(target);
    const WindowsPath around = FolderAround(target);
    if (IsWithin(around.Text(), from))
        throw Failure(FailureNumber::PermissionDenied, target.Text());
    RequireFolderAround(target);
    RequireWritableAround(target);
    const Place place = tree_.Find(source);
    std::unique_ptr<Node> copy =
        place.node != nullptr ? place.node->Copy() : std::make_unique<Node>();
    copy->kind = Node::Kind::Folder;
    copy->ground = place.ground;
    copy->name = NameIn(target);
    copy->isAsItWas = false;
    tree_.Put(target, std::move(copy));
}

void PreviewFiles::DeleteFile(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    if (!FileExists(path)) throw Failure(FailureNumber::FileNotFound, parsed.Text());
    RequireWritable(tree_.Find(parsed), parsed);
    RequireWritableAround(parsed);
    Take(parsed);
}

void PreviewFiles::DeleteFolder(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    if (!HasFolder(parsed)) throw Failure(FailureNumber::PathNotFound, parsed.Text());
    if (parsed.rest.empty()) throw Failure(FailureNumber::PermissionDenied, parsed.Text());
    RequireWritable(tree_.Find(parsed), parsed);
    RequireWritableAround(parsed);
    Take(parsed);
}

void PreviewFiles::Discard(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    if (parsed.rest.empty() || !Has(parsed)) RefuseMissing(parsed);
    if (HasFolder(parsed)) {
        const Listing<FileEntry> files = FilesIn(path);
        if (!files.empty() || !files.others.empty() || !files.unseen.empty()) {
            throw Failure(FailureNumber::PathFileAccess, parsed.Text() + " (Directory not empty)");
        }
    }
    RequireWritableAround(parsed);
    Take(parsed);
}

void PreviewFiles::MoveFile(std::string_view from, std::string_view to) {
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    if (!HasFile(source)) throw Failure(FailureNumber::FileNotFound, source.Text());
    if (!EqualIgnoringCase(source.Text(), target.Text())) {
        RequireFreeName(target);
        RequireFolderAround(target);
    }
    RequireWritableAround(source);
    RequireWritableAround(target);
    if (tree_.Find(source).node == nullptr) {
        // Its size and time are asked for while the path still means it.
        const std::string ground = tree_.Find(source).ground;
        const FileEntry entry = ground_.GetFile(ground);
        auto node = std::make_unique<Node>();
        node->kind = Node::Kind::File;
        node->ground = ground;
        node->content.ground = ground;
        node->content.kept = entry.size;
        node->modified = entry.modified;
        tree_.Put(source, std::move(node));
    }
    std::unique_ptr<Node> node = Take(source);
    node->name = NameIn(target);
    tree_.Put(target, std::move(node));
}

void PreviewFiles::MoveFolder(std::string_view from, std::string_view to) {
    const WindowsPath source = ParseWindowsPath(from);
    const WindowsPath target = ParseWindowsPath(to);
    if (!HasFolder(source)) throw Failure(FailureNumber::PathNotFound, source.Text());
    RequireFreeName(target);
    RequireFolderAround(target);
    if (source.rest.empty() || IsWithin(FolderAround(target).Text(), from))
        throw Failure(FailureNumber::BadFileName, target.Text());
    RequireWritableAround(source);
    RequireWritableAround(target);
    std::unique_ptr<Node> node = Take(source);
    node->name = NameIn(target);
    node->isAsItWas = false;
    tree_.Put(target, std::move(node));
}

std::unique_ptr<TextReader> PreviewFiles::OpenText(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const Place place = tree_.Find(parsed);
    if (place.node == nullptr && !place.ground.empty()) return ground_.OpenText(place.ground);
    return std::make_unique<AnsiTextReader>(OpenBinary(path), parsed.Text());
}

std::unique_ptr<BinaryReader> PreviewFiles::OpenBinary(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const Place place = tree_.Find(parsed);
    if (place.IsNothing()) RefuseMissing(parsed);
    if (place.node == nullptr) return ground_.OpenBinary(place.ground);
    if (place.IsFile()) return place.node->content.Open(ground_);
    throw Failure(FailureNumber::PermissionDenied,
                  parsed.Text() + " (this is a folder and no file)");
}

std::unique_ptr<TextWriter> PreviewFiles::Writer(const WindowsPath& path) {
    RequireMayReplace(path);
    return std::make_unique<PreviewText>(
        path.Text(), [this, path](std::string bytes, std::optional<DateTime> modified) {
            PutWritten(path, std::move(bytes), modified);
        });
}

std::unique_ptr<TextWriter> PreviewFiles::CreateText(std::string_view path) {
    return Writer(ParseWindowsPath(path));
}

std::unique_ptr<TextWriter> PreviewFiles::CreateOwnText(std::string_view path) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const Place place = tree_.Find(parsed);
    const bool isOnDisk = place.node == nullptr && !place.ground.empty();
    if (isOnDisk && rights_.isLink && rights_.isLink(place.ground)) {
        throw Failure(FailureNumber::PermissionDenied,
                      parsed.Text() + " (this is a symbolic link and no file)");
    }
    return Writer(parsed);
}

std::unique_ptr<TextBatch> PreviewFiles::CreateTexts(TextBatch::Done done) {
    return std::make_unique<PreviewBatch>(
        [this](const WindowsPath& path) { RequireMayReplace(path); },
        [this](const WindowsPath& path, std::string bytes) { PutWritten(path, std::move(bytes)); },
        std::move(done));
}

void PreviewFiles::WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                            std::span<const std::uint8_t> bytes) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string shown = parsed.Text();
    if (!HasFile(parsed)) RefuseMissing(parsed);
    const Place place = tree_.Find(parsed);
    RequireWritable(place, parsed);
    if (!HasEnd(*OpenBinary(path), seen))
        throw Failure(FailureNumber::PathFileAccess, shown + " (it has changed meanwhile)");
    if (position > seen.size || (position + bytes.size() < seen.size && !bytes.empty()))
        throw Failure(FailureNumber::InvalidProcedureCall, shown);
    std::unique_ptr<Node> node = FileNode(parsed);
    node->ground = place.ground;
    node->content = node->content.WithEnd(position, bytes);
    tree_.Put(parsed, std::move(node));
}

void PreviewFiles::ReplaceBytes(std::string_view path, const FilePiece& seen,
                                std::span<const std::uint8_t> bytes) {
    const WindowsPath parsed = ParseWindowsPath(path);
    const std::string shown = parsed.Text();
    if (!HasFile(parsed)) RefuseMissing(parsed);
    const Place place = tree_.Find(parsed);
    RequireWritable(place, parsed);
    if (bytes.size() != seen.bytes.size()) RequireWritableAround(parsed);
    const std::uint64_t end = seen.position + seen.bytes.size();
    if (end > seen.size) throw Failure(FailureNumber::InvalidProcedureCall, shown);
    const std::unique_ptr<BinaryReader> reader = OpenBinary(path);
    std::vector<std::uint8_t> head = reader->Read(static_cast<std::size_t>(end));
    const bool isAsSeen = reader->Size() == seen.size && head.size() == end &&
                          std::equal(seen.bytes.begin(), seen.bytes.end(),
                                     head.begin() + static_cast<std::ptrdiff_t>(seen.position));
    if (!isAsSeen)
        throw Failure(FailureNumber::PathFileAccess, shown + " (it has changed meanwhile)");
    head.resize(static_cast<std::size_t>(seen.position));
    head.insert(head.end(), bytes.begin(), bytes.end());
    std::unique_ptr<Node> node = FileNode(parsed);
    node->ground = place.ground;
    node->content = node->content.WithHead(end, head);
    tree_.Put(parsed, std::move(node));
}

}  // namespace quillon
