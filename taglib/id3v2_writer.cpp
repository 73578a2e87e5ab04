#include "taglib/id3v2_writer.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/utf8.h"
#include "taglib/field_text.h"
#include "taglib/frame_fields.h"
#include "taglib/frame_text.h"

namespace quillon {
namespace {

using ByteList = std::vector<std::uint8_t>;

/// For the next changes, so that they need not write the whole file again.
constexpr std::size_t Padding = 2048;

/// The numbers by which a text's first byte says its encoding.
enum Encoding : std::uint8_t { Latin1 = 0, Utf16 = 1, Utf8 = 3 };

void Append(ByteList& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

/// In so many bytes of so many bits, highest first.
void AppendNumber(ByteList& bytes, std::uint64_t number, unsigned count, unsigned bits) {
    for (unsigned i = count; i-- > 0;)
        bytes.push_back(static_cast<std::uint8_t>((number >> (bits * i)) & ((1U << bits) - 1)));
}

Encoding EncodingFor(std::string_view text, unsigned version) {
    if (IsAscii(text)) return Latin1;
    return version == 4 ? Utf8 : Utf16;
}

/// Lowest byte first, with the mark that says so.
void AppendUtf16(ByteList& bytes, std::string_view text) {
    const auto append = [&bytes](std::uint32_t unit) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8U));
    };
    append(0xFEFF);
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        at += character.length;
        const std::uint32_t code = character.code;
        if (code < 0x10000) {
            append(code);
        } else {
            append(0xD800 + ((code - 0x10000) >> 10U));
            append(0xDC00 + ((code - 0x10000) & 0x3FFU));
        }
    }
}

void AppendText(ByteList& bytes, std::string_view text, Encoding encoding) {
    if (encoding == Utf16) return AppendUtf16(bytes, text);
    Append(bytes, text);
}

/// What a frame of this text holds; a comment keeps its language.
ByteList ContentOf(std::string Tag::* field, std::string_view text, unsigned version,
                   std::span<const std::uint8_t> old) {
    constexpr std::size_t Language = 3;
    const Encoding encoding = EncodingFor(text, version);
    ByteList content{encoding};
    if (field == &Tag::comment) {
        const auto language = old.subspan(1, Language);
        content.insert(content.end(), language.begin(), language.end());
        AppendText(content, "", encoding);
        content.insert(content.end(), encoding == Utf16 ? 2 : 1, 0);
    }
    AppendText(content, text, encoding);
    return content;
}

class HeadRewrite {
  public:
    HeadRewrite(std::span<const std::uint8_t> head, const Tag& wanted)
        : head_(head), wanted_(wanted), window_(ByteList(head.begin(), head.end())) {}

    std::optional<ByteList> Make() {
        const std::optional<Id3v2Header> header = ReadId3v2Header(window_);
        if (!header || header->size != head_.size()) Refuse();
        header_ = *header;
        Id3v2Body body;
        FindBody(window_, header_, body, head_.size());
        const FrameReader reader(head_.first(Id3v2Header::Size));
        kept_ = body.begin;
        const std::uint64_t end = VisitFrames(header_, body, [&](const Id3v2Frame& frame) {
            Look(frame, body, reader);
            return true;
        });
        if (!IsPadding(body, end)) Refuse();
        if (!isChanged_) return std::nullopt;
        Keep(body, end);
        return Whole();
    }

  private:
    [[noreturn]] static void Refuse() {
        throw Failure::Described(FailureNumber::InvalidProcedureCall,
                                 "the ID3v2 tag stays as it is, since it is damaged");
    }

    /// All bytes are at hand, so they stay where they are.
    static std::span<const std::uint8_t> At(Id3v2Body& body, std::uint64_t begin,
                                            std::uint64_t end) {
        const auto bytes = body.bytes->At(begin, static_cast<std::size_t>(end - begin));
        if (bytes.size() != end - begin) Refuse();
        return bytes;
    }

    static bool IsPadding(Id3v2Body& body, std::uint64_t begin) {
        return std::ranges::all_of(At(body, begin, body.end),
                                   [](std::uint8_t byte) { return byte == 0; });
    }

    /// Takes over what lies before a place and has not been yet.
    void Keep(Id3v2Body& body, std::uint64_t end) {
        const auto bytes = At(body, kept_, end);
        frames_.insert(frames_.end(), bytes.begin(), bytes.end());
        kept_ = end;
    }

    void Look(const Id3v2Frame& frame, Id3v2Body& body, const FrameReader& reader) {
        std::string Tag::* const field = FieldOfFrame(frame.name);
        if (field == nullptr || frame.size > LongestText || (wanted_.*field).empty()) return;
        const std::uint64_t content = frame.at + header_.FrameHeader();
        const auto old = At(body, frame.at, content + frame.size);
        const FrameText text = reader.Read(frame, old);
        if (text.values.empty() || !text.about.empty()) return;
        if (std::ranges::find(seen_, field) != seen_.end()) return;
        seen_.push_back(field);
        const std::string value = ValueFor(field, text.values);
        if (value.empty()) return;
        Keep(body, frame.at);
        const ByteList fresh =
            ContentOf(field, value, header_.version, old.subspan(header_.FrameHeader()));
        Append(frames_, frame.name);
        const bool isShort = header_.version == 2;
        AppendNumber(frames_, fresh.size(), isShort ? 3 : 4, header_.version == 4 ? 7 : 8);
        if (!isShort) AppendNumber(frames_, 0, 2, 8);
        frames_.insert(frames_.end(), fresh.begin(), fresh.end());
        kept_ = content + frame.size;
        isChanged_ = true;
    }

    /// What the frame should say instead; "" where it may stay.
    std::string ValueFor(std::string Tag::* field, const std::vector<std::string>& values) const {
        const std::string& wanted = wanted_.*field;
        if (field == &Tag::genre) {
            const bool isSaid = std::ranges::any_of(
                values, [&](const std::string& value) { return EqualIgnoringCase(value, wanted); });
            return isSaid ? "" : wanted;
        }
        const std::string& present = values.front();
        if (FieldValueOf(field, present) == wanted || Trim(present) == Trim(wanted)) return "";
        // "3/12" tells of how many, too.
        const std::size_t slash =
            field == &Tag::track ? std::min(present.find('/'), present.size()) : present.size();
        return wanted + present.substr(slash);
    }

    ByteList Whole() const {
        const std::size_t room = head_.size() - Id3v2Header::Size;
        const std::size_t size = frames_.size() <= room ? room : frames_.size() + Padding;
        constexpr std::uint8_t Unsynchronised = 0x80, Experimental = 0x20;
        ByteList whole{'I', 'D', '3', head_[3], head_[4]};
        const std::uint8_t stays =
            Experimental | (header_.version == 4 ? Unsynchronised : std::uint8_t{0});
        whole.push_back(header_.flags & stays);
        AppendNumber(whole, size, 4, 7);
        whole.insert(whole.end(), frames_.begin(), frames_.end());
        whole.resize(Id3v2Header::Size + size);
        return whole;
    }

    std::span<const std::uint8_t> head_;
    const Tag& wanted_;
    ByteWindow window_;
    Id3v2Header header_;
    std::uint64_t kept_ = 0;
    ByteList frames_;
    std::vector<std::string Tag::*> seen_;
    bool isChanged_ = false;
};

}  // namespace

std::optional<ByteList> ChangedHead(std::span<const std::uint8_t> head, const Tag& wanted) {
    return HeadRewrite(head, wanted).Make();
}

}  // namespace quillon
