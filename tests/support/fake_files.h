#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/basic_text.h"
#include "platform/files.h"
#include "tests/support/fake_calls.h"

namespace quillon::fakes {

/// A file system in memory, with Windows paths and names that count without letter case. Listings
/// come in name order. What changes or reads files is noted; look-ups and listings are only
/// refused where a test says so.
class FakeFiles : public Files {
  public:
    explicit FakeFiles(Calls& calls) : calls_(calls) {}

    /// Makes a folder and those it lies in.
    void AddFolder(const std::string& path) {
        if (path.empty() || path.ends_with(':') || nodes_.contains(KeyOf(path))) return;
        AddFolder(ParentOf(path));
        nodes_[KeyOf(path)] = {path, true, "", {}, 0};
    }

    /// Makes a file and the folders it lies in; a text file's lines end in CR LF.
    void AddFile(const std::string& path, const std::string& content = "", DateTime modified = {}) {
        AddFolder(ParentOf(path));
        nodes_[KeyOf(path)] = {path, false, content, modified, ++changes_};
    }

    /// The bytes of a file. Failure: FileNotFound.
    std::string Content(std::string_view path) const { return FileAt(path).content; }

    /// The paths of all folders and files, folders with a trailing backslash, in name order.
    std::vector<std::string> Everything() const {
        std::vector<std::string> paths;
        paths.reserve(nodes_.size());
        for (const auto& [key, node] : nodes_) {
            paths.push_back(node.isFolder ? node.path + "\\" : node.path);
        }
        return paths;
    }

    /// Nobody can tell what has this path: it is listed as unseen, and so is nothing below it.
    void HideFromView(const std::string& path) { unseen_[KeyOf(path)] = path; }
    void ShowAll() { unseen_.clear(); }

    /// Called before a file is opened for reading bytes; what another program does meanwhile.
    std::function<void(std::string_view path)> beforeOpenBinary;

    bool FolderExists(std::string_view path) override {
        RequireSeen(path);
        const auto found = nodes_.find(KeyOf(path));
        return found != nodes_.end() && found->second.isFolder;
    }

    bool FileExists(std::string_view path) override {
        RequireSeen(path);
        const auto found = nodes_.find(KeyOf(path));
        return found != nodes_.end() && !found->second.isFolder;
    }

    bool IsWithin(std::string_view folder, std::string_view outer) override {
        const std::string inner = KeyOf(folder) + '\\';
        return FolderExists(folder) && FolderExists(outer) &&
               inner.starts_with(KeyOf(outer) + '\\');
    }

    bool IsSameFile(std::string_view path, std::string_view other) override {
        return FileExists(path) && FileExists(other) && EqualIgnoringCase(path, other);
    }

    /// D:\Music\a.mp3 is /drives/d/Music/a.mp3; there are no other drives.
    std::optional<std::string> LocalPath(std::string_view path) override {
        if (!LowerCase(path).starts_with("d:\\")) return std::nullopt;
        return "/drives/d/" + Replace(path.substr(3), "\\", "/");
    }

    Listing<FolderEntry> SubFolders(std::string_view folder) override {
        calls_.Note("SubFolders " + std::string(folder));
        Listing<FolderEntry> list;
        for (const Node& node : NodesIn(folder)) {
            if (unseen_.contains(KeyOf(node.path))) continue;
            if (node.isFolder) {
                list.entries.push_back({node.path, NameOf(node.path)});
            } else {
                list.others.push_back(NameOf(node.path));
            }
        }
        list.unseen = UnseenIn(folder);
        return list;
    }

    Listing<FileEntry> FilesIn(std::string_view folder) override {
        calls_.Note("FilesIn " + std::string(folder));
        Listing<FileEntry> list;
        for (const Node& node : NodesIn(folder)) {
            if (unseen_.contains(KeyOf(node.path))) continue;
            if (node.isFolder) {
                list.others.push_back(NameOf(node.path));
            } else {
                list.entries.push_back(EntryOf(node));
            }
        }
        list.unseen = UnseenIn(folder);
        return list;
    }

    FolderNames NamesIn(std::string_view folder) override {
        calls_.Note("NamesIn " + std::string(folder));
        FolderNames names;
        for (const Node& node : NodesIn(folder))
            (node.isFolder ? names.folders : names.files).push_back(NameOf(node.path));
        return names;
    }

    FileEntry GetFile(std::string_view path) override { return EntryOf(FileAt(path)); }

    void CreateFolder(std::string_view path) override {
        calls_.Note("CreateFolder " + std::string(path));
        AddFolder(std::string(path));
    }

    void CopyFile(std::string_view from, std::string_view to, bool overwrite) override {
        calls_.Note("CopyFile " + std::string(from) + " -> " + std::string(to));
        Copy(from, to, overwrite);
    }

    void CopyFolder(std::string_view from, std::string_view to) override {
        calls_.Note("CopyFolder " + std::string(from) + " -> " + std::string(to));
        RequireFolder(from);
        if (nodes_.contains(KeyOf(to))) {
            throw Failure(FailureNumber::FileAlreadyExists, std::string(to));
        }
        CopyInto(from, std::string(to));
    }

    void WatchCopies(BytesWatch watch) override { copyWatch_ = std::move(watch); }

    void DeleteFile(std::string_view path) override {
        calls_.Note("DeleteFile " + std::string(path));
        FileAt(path);
        nodes_.erase(KeyOf(path));
    }

    void DeleteFolder(std::string_view path) override {
        calls_.Note("DeleteFolder " + std::string(path));
        RequireFolder(path);
        std::erase_if(nodes_, [&](const auto& node) { return IsWithin(node.first, KeyOf(path)); });
    }

    void MoveFolder(std::string_view from, std::string_view to) override {
        calls_.Note("MoveFolder " + std::string(from) + " -> " + std::string(to));
        RequireFolder(from);
        if (nodes_.contains(KeyOf(to))) {
            throw Failure(FailureNumber::FileAlreadyExists, std::string(to));
        }
        std::map<std::string, Node> moved;
        for (const auto& [key, node] : nodes_) {
            if (!IsWithin(key, KeyOf(from))) continue;
            const std::string path = std::string(to) + node.path.substr(from.size());
            moved[KeyOf(path)] = {path, node.isFolder, node.content, node.modified, node.changed};
        }
        std::erase_if(nodes_, [&](const auto& node) { return IsWithin(node.first, KeyOf(from)); });
        nodes_.merge(moved);
    }

    void Discard(std::string_view path) override {
        calls_.Note("Discard " + std::string(path));
        if (!NodesIn(path).empty()) {
            throw Failure(FailureNumber::PathFileAccess, std::string(path));
        }
        if (nodes_.erase(KeyOf(path)) == 0) {
            throw Failure(FailureNumber::FileNotFound, std::string(path));
        }
    }

    void MoveFile(std::string_view from, std::string_view to) override {
        calls_.Note("MoveFile " + std::string(from) + " -> " + std::string(to));
        Copy(from, to, EqualIgnoringCase(from, to));
        if (!EqualIgnoringCase(from, to)) nodes_.erase(KeyOf(from));
    }

    std::unique_ptr<TextReader> OpenText(std::string_view path) override {
        calls_.Note("OpenText " + std::string(path));
        return std::make_unique<Reader>(FileAt(path).content);
    }

    std::unique_ptr<TextWriter> CreateText(std::string_view path) override {
        calls_.Note("CreateText " + std::string(path));
        return std::make_unique<Writer>(*this, std::string(path));
    }

    std::unique_ptr<TextWriter> CreateOwnText(std::string_view path) override {
        return CreateText(path);
    }

    std::unique_ptr<TextBatch> CreateTexts(TextBatch::Done done) override {
        return std::make_unique<Batch>(*this, std::move(done));
    }

    std::unique_ptr<BinaryReader> OpenBinary(std::string_view path) override {
        calls_.Note("OpenBinary " + std::string(path));
        if (beforeOpenBinary) beforeOpenBinary(path);
        return std::make_unique<Bytes>(FileAt(path).content);
    }

    void RemoveUnfinished(std::string_view folder) override {
        calls_.Note("RemoveUnfinished " + std::string(folder));
        const std::string beginning = KeyOf(folder) + "\\.quillon-";
        std::erase_if(nodes_, [&](const auto& node) { return node.first.starts_with(beginning); });
    }

    void WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) override {
        calls_.Note("WriteEnd " + std::string(path));
        std::string content = FileAt(path).content;
        const std::string last(seen.bytes.begin(), seen.bytes.end());
        if (content.size() != seen.size || !content.ends_with(last)) {
            throw Failure(FailureNumber::PathFileAccess, std::string(path));
        }
        if (position > content.size() ||
            (position + bytes.size() < content.size() && !bytes.empty())) {
            throw Failure(FailureNumber::InvalidProcedureCall, std::string(path));
        }
        content.replace(position, std::string::npos, std::string(bytes.begin(), bytes.end()));
        Touch(nodes_[KeyOf(path)]).content = content;
    }

    void ReplaceBytes(std::string_view path, const FilePiece& seen,
                      std::span<const std::uint8_t> bytes) override {
        calls_.Note("ReplaceBytes " + std::string(path));
        std::string content = FileAt(path).content;
        const std::string old(seen.bytes.begin(), seen.bytes.end());
        if (seen.position + old.size() > seen.size)
            throw Failure(FailureNumber::InvalidProcedureCall, std::string(path));
        if (content.size() != seen.size || content.compare(seen.position, old.size(), old) != 0)
            throw Failure(FailureNumber::PathFileAccess, std::string(path));
        content.replace(seen.position, old.size(), std::string(bytes.begin(), bytes.end()));
        Touch(nodes_[KeyOf(path)]).content = content;
    }

  private:
    struct Node {
        std::string path;
        bool isFolder = false;
        std::string content;
        DateTime modified;
        std::int64_t changed = 0;
    };

    Node& Touch(Node& node) {
        node.changed = ++changes_;
        return node;
    }

    class Reader : public TextReader {
      public:
        explicit Reader(std::string text) : text_(std::move(text)) {}
        bool AtEndOfStream() const override { return position_ >= text_.size(); }
        std::string ReadLine() override {
            if (AtEndOfStream()) throw Failure(FailureNumber::InputPastEnd, "fake text");
            const std::size_t end = std::min(text_.find('\n', position_), text_.size());
            std::string line = text_.substr(position_, end - position_);
            if (line.ends_with('\r')) line.pop_back();
            position_ = end + 1;
            return line;
        }

      private:
        std::string text_;
        std::size_t position_ = 0;
    };

    class Writer : public TextWriter {
      public:
        Writer(FakeFiles& files, std::string path) : files_(files), path_(std::move(path)) {}
        void Write(std::string_view text) override { text_ += text; }
        void WriteLine(std::string_view line) override { text_ += std::string(line) + "\r\n"; }
        void WriteBytes(std::string_view bytes) override { text_ += bytes; }
        void Close() override { files_.AddFile(path_, text_); }
        bool CloseIf(const std::function<bool()>& isWanted) override {
            if (!isWanted()) return false;
            Close();
            return true;
        }

      private:
        FakeFiles& files_;
        std::string path_;
        std::string text_;
    };

    /// All files of a batch get their names when it is closed.
    class Batch : public TextBatch {
      public:
        Batch(FakeFiles& files, Done done) : files_(files), done_(std::move(done)) {}
        void Write(std::string_view path, std::string_view bytes) override {
            files_.calls_.Note("CreateText " + std::string(path));
            waiting_.emplace_back(path, bytes);
        }
        void Close() override {
            for (const auto& [path, bytes] : std::exchange(waiting_, {})) {
                try {
                    files_.calls_.Note("Name " + path);
                    files_.AddFile(path, bytes);
                    done_(nullptr);
                } catch (const Failure& failure) {
                    done_(&failure);
                }
            }
        }

      private:
        FakeFiles& files_;
        Done done_;
        std::vector<std::pair<std::string, std::string>> waiting_;
    };

    class Bytes : public BinaryReader {
      public:
        explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}
        std::uint64_t Size() const override { return bytes_.size(); }
        void SetPosition(std::uint64_t position) override { position_ = position; }
        std::size_t ReadInto(std::span<std::uint8_t> bytes) override {
            const std::size_t from = std::min<std::size_t>(position_, bytes_.size());
            const std::string piece = bytes_.substr(from, bytes.size());
            position_ = from + piece.size();
            std::ranges::copy(piece, bytes.begin());
            return piece.size();
        }

      private:
        std::string bytes_;
        std::size_t position_ = 0;
    };

    static std::string KeyOf(std::string_view path) {
        while (path.ends_with('\\'))
            path.remove_suffix(1);
        return LowerCase(path);
    }
    static std::string ParentOf(const std::string& path) {
        const std::size_t slash = path.rfind('\\');
        return slash == std::string::npos ? "" : path.substr(0, slash);
    }
    static std::string NameOf(const std::string& path) { return path.substr(path.rfind('\\') + 1); }
    static FileEntry EntryOf(const Node& node) {
        return {node.path, NameOf(node.path), node.content.size(), node.modified, node.changed};
    }

    static bool IsWithin(std::string_view key, const std::string& folderKey) {
        return key == folderKey || key.starts_with(folderKey + "\\");
    }

    void RequireSeen(std::string_view path) const {
        for (const auto& [key, unseen] : unseen_) {
            if (IsWithin(KeyOf(path), key)) throw Failure(FailureNumber::PathFileAccess, unseen);
        }
    }

    std::vector<std::string> UnseenIn(std::string_view folder) const {
        std::vector<std::string> paths;
        for (const auto& [key, path] : unseen_) {
            if (ParentOf(key) == KeyOf(folder)) paths.push_back(path);
        }
        return paths;
    }

    void RequireFolder(std::string_view path) const {
        const auto found = nodes_.find(KeyOf(path));
        if (found == nodes_.end() || !found->second.isFolder) {
            throw Failure(FailureNumber::PathNotFound, std::string(path));
        }
    }

    const Node& FileAt(std::string_view path) const {
        const auto found = nodes_.find(KeyOf(path));
        if (found == nodes_.end() || found->second.isFolder) {
            throw Failure(FailureNumber::FileNotFound, std::string(path));
        }
        return found->second;
    }

    std::vector<Node> NodesIn(std::string_view folder) const {
        const std::string parent = KeyOf(folder);
        std::vector<Node> inside;
        for (const auto& [key, node] : nodes_) {
            if (ParentOf(key) == parent) inside.push_back(node);
        }
        return inside;
    }

    void CopyInto(std::string_view from, const std::string& to) {
        AddFolder(to);
        for (const Node& node : NodesIn(from)) {
            const std::string target = to + "\\" + NameOf(node.path);
            if (node.isFolder) {
                CopyInto(node.path, target);
            } else {
                Copy(node.path, target, false);
            }
        }
    }

    void Copy(std::string_view from, std::string_view to, bool overwrite) {
        if (!overwrite && FileExists(to)) {
            throw Failure(FailureNumber::FileAlreadyExists, std::string(to));
        }
        const Node source = FileAt(from);
        AddFile(std::string(to), source.content, source.modified);
        if (copyWatch_) copyWatch_(source.content.size());
    }

    Calls& calls_;
    BytesWatch copyWatch_;
    std::int64_t changes_ = 0;
    std::map<std::string, Node> nodes_;          ///< by lower-cased path
    std::map<std::string, std::string> unseen_;  ///< paths by lower-cased path
};

}  // namespace quillon::fakes
