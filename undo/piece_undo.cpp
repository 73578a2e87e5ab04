#include "undo/piece_undo.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "changes/file_content.h"
#include "platform/basic_text.h"
#include "undo/refusals.h"

namespace quillon {
namespace {

using Kind = FileChange::Kind;

std::span<const std::uint8_t> AsBytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::vector<std::uint8_t> Copied(const std::string& text) {
    return {text.begin(), text.end()};
}

Progress ProgressIn(std::string_view present, std::string_view before, std::string_view after) {
    if (present == after) return Progress::Done;
    if (present == before) return Progress::NotBegun;
    const auto [least, most] = std::minmax({before.size(), after.size()});
    if (present.size() < least || present.size() > most) return Progress::Unknown;
    const auto is = [&](std::string_view text, std::size_t at) {
        return at < text.size() && text[at] == present[at];
    };
    for (std::size_t at = 0; at < present.size(); ++at)
        if (!is(before, at) && !is(after, at)) return Progress::Unknown;
    return Progress::Partly;
}

/// What a file holds where a change has written, and how large the whole is.
struct Present {
    std::uint64_t size = 0;
    std::string bytes;
};

Present LookAt(Files& files, const FileChange& change, std::uint64_t most) {
    return {.size = files.GetFile(change.path).size,
            .bytes = BytesOf(files, change.path, change.position, most)};
}

/// Of the end of a file one byte more, which would be another program's.
std::uint64_t MostOfEnd(const FileChange& change) {
    return std::max(change.before->bytes->size(), change.after->bytes->size()) + 1;
}

bool IsWrittenInPlace(const FileChange& change) {
    const bool hasBytes =
        change.before && change.before->bytes && change.after && change.after->bytes;
    return hasBytes &&
           (change.kind == Kind::EndWritten ||
            (change.kind == Kind::PieceReplaced && change.before->size == change.after->size));
}

Progress ProgressOfWrite(const FileChange& change, const Present& present) {
    const bool isOfSize = change.kind == Kind::EndWritten || present.size == change.after->size;
    if (!IsWrittenInPlace(change) || !isOfSize) return Progress::Unknown;
    return ProgressIn(present.bytes, *change.before->bytes, *change.after->bytes);
}

}  // namespace

std::string KeptPath(const std::string& hostFolder, const FileContent& content) {
    return hostFolder + '\\' + Replace(content.keptAs, "/", "\\");
}

Outcome PieceUndo::TakeBack(const FileChange& change, Writes writes) {
    if (!files_.FileExists(change.path)) return Gone(change.path);
    return change.kind == Kind::EndWritten ? PutEndBack(change, writes)
                                           : PutPieceBack(change, writes);
}

Progress PieceUndo::ProgressOf(const FileChange& change) {
    if (!IsWrittenInPlace(change) || !files_.FileExists(change.path)) return Progress::Unknown;
    const std::uint64_t most =
        change.kind == Kind::EndWritten ? MostOfEnd(change) : change.after->bytes->size();
    return ProgressOfWrite(change, LookAt(files_, change, most));
}

/// The bytes behind the position are a tag. It comes back, or the file becomes as short as it was.
Outcome PieceUndo::PutEndBack(const FileChange& change, Writes writes) {
    if (!IsWrittenInPlace(change)) return NotKept(change.path);
    const Present present = LookAt(files_, change, MostOfEnd(change));
    if (present.size < change.position) return ChangedSince(change.path);
    const std::string &before = *change.before->bytes, &after = *change.after->bytes;
    if (present.bytes == before) return {.state = Outcome::State::WasSo};
    const bool getsShorter = before.size() < after.size();
    const bool isCut = getsShorter && present.bytes.empty();
    const bool isTorn =
        writes == Writes::PerhapsTorn && ProgressOfWrite(change, present) == Progress::Partly;
    if (present.bytes != after && !isCut && !isTorn) return ChangedSince(change.path);
    const FileEnd seen{.size = present.size, .bytes = Copied(present.bytes)};
    // Bytes are only written up to the end or beyond, so the end goes first.
    if (getsShorter && !isCut) files_.WriteEnd(change.path, seen, change.position, {});
    if (getsShorter && !before.empty()) {
        files_.WriteEnd(change.path, {.size = change.position, .bytes = {}}, change.position,
                        AsBytes(before));
    } else if (!getsShorter) {
        files_.WriteEnd(change.path, seen, change.position, AsBytes(before));
    }
    return {};
}

/// A piece of a file that was replaced: of a tag before the sound.
Outcome PieceUndo::PutPieceBack(const FileChange& change, Writes writes) {
    if (!change.before || !change.after) return NotKept(change.path);
    std::string before = change.before->bytes.value_or("");
    if (!change.before->keptAs.empty()) {
        const std::string kept = KeptPath(hostFolder_, *change.before);
        if (!files_.FileExists(kept)) return NotKept(change.path);
        before = BytesOf(files_, kept);
    }
    const auto is = [](const Present& present, const FileContent& content, std::uint64_t hash) {
        return present.size == content.size && ContentHash(present.bytes) == hash;
    };
    if (is(LookAt(files_, change, before.size()), *change.before, ContentHash(before)))
        return {.state = Outcome::State::WasSo};
    const Present present =
        LookAt(files_, change, change.after->size + before.size() - change.before->size);
    const bool isTorn =
        writes == Writes::PerhapsTorn && ProgressOfWrite(change, present) == Progress::Partly;
    if (!is(present, *change.after, change.after->hash) && !isTorn)
        return ChangedSince(change.path);
    const FilePiece seen{
        .size = change.after->size, .position = change.position, .bytes = Copied(present.bytes)};
    files_.ReplaceBytes(change.path, seen, AsBytes(before));
    return {};
}

}  // namespace quillon
