#include "changes/preview_content.h"

#include <algorithm>
#include <utility>

namespace quillon {
namespace {

class PreviewReader : public BinaryReader {
  public:
    PreviewReader(std::unique_ptr<BinaryReader> ground, PreviewContent content)
        : ground_(std::move(ground)), content_(std::move(content)) {}

    std::uint64_t Size() const override { return content_.Size(); }
    void SetPosition(std::uint64_t position) override { position_ = position; }

    std::size_t ReadInto(std::span<std::uint8_t> bytes) override {
        const std::size_t asked = bytes.size();
        const std::uint64_t groundFrom = content_.head->size();
        const std::uint64_t addedFrom = groundFrom + (content_.kept - content_.skipped);
        Take(bytes, *content_.head, 0);
        if (position_ >= groundFrom && position_ < addedFrom && !bytes.empty()) {
            ground_->SetPosition(position_ - groundFrom + content_.skipped);
            const auto wanted = std::min<std::uint64_t>(bytes.size(), addedFrom - position_);
            Advance(bytes, ground_->ReadInto(bytes.first(static_cast<std::size_t>(wanted))));
        }
        // Nothing of what is behind where the file that is there has become shorter.
        Take(bytes, *content_.added, addedFrom);
        return asked - bytes.size();
    }

  private:
    /// What of a text that begins there is wanted.
    void Take(std::span<std::uint8_t>& bytes, std::string_view text, std::uint64_t from) {
        if (position_ < from || position_ >= from + text.size()) return;
        const auto rest = text.substr(static_cast<std::size_t>(position_ - from), bytes.size());
        std::ranges::copy(rest, bytes.begin());
        Advance(bytes, rest.size());
    }

    void Advance(std::span<std::uint8_t>& bytes, std::size_t count) {
        bytes = bytes.subspan(count);
        position_ += count;
    }

    std::unique_ptr<BinaryReader> ground_;
    PreviewContent content_;
    std::uint64_t position_ = 0;
};

}  // namespace

std::shared_ptr<const std::string> PreviewContent::NoBytes() {
    static const auto none = std::make_shared<const std::string>();
    return none;
}

PreviewContent PreviewContent::WithEnd(std::uint64_t position,
                                       std::span<const std::uint8_t> bytes) const {
    PreviewContent changed = *this;
    const std::uint64_t fromHead = std::min<std::uint64_t>(position, head->size());
    if (fromHead < head->size())
        changed.head =
            std::make_shared<const std::string>(*head, 0, static_cast<std::size_t>(fromHead));
    changed.kept = std::min(kept, skipped + (position - fromHead));
    const std::uint64_t behind = position - fromHead - (changed.kept - skipped);
    std::string end = added->substr(0, static_cast<std::size_t>(behind));
    end.append(bytes.begin(), bytes.end());
    changed.added = std::make_shared<const std::string>(std::move(end));
    return changed;
}

PreviewContent PreviewContent::WithHead(std::uint64_t position,
                                        std::span<const std::uint8_t> bytes) const {
    PreviewContent changed = *this;
    std::string begin(bytes.begin(), bytes.end());
    const std::uint64_t fromHead = std::min<std::uint64_t>(position, head->size());
    begin += head->substr(static_cast<std::size_t>(fromHead));
    changed.skipped = std::min(kept, skipped + (position - fromHead));
    const std::uint64_t behind = position - fromHead - (changed.skipped - skipped);
    changed.added =
        std::make_shared<const std::string>(added->substr(static_cast<std::size_t>(behind)));
    changed.head = std::make_shared<const std::string>(std::move(begin));
    return changed;
}

std::unique_ptr<BinaryReader> PreviewContent::Open(Files& files) const {
    auto reader = ground.empty() ? nullptr : files.OpenBinary(ground);
    return std::make_unique<PreviewReader>(std::move(reader), *this);
}

}  // namespace quillon
