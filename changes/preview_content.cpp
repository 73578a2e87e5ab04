#include "changes/preview_content.h"

#include <algorithm>
#include <utility>

namespace quillon {
namespace {

class PreviewReader : public BinaryReader {
  public:
    PreviewReader(std::unique_ptr<BinaryReader> ground, const PreviewContent& content)
        : ground_(std::move(ground)), kept_(content.kept), added_(content.added) {}

    std::uint64_t Size() const override { return kept_ + added_->size(); }
    void SetPosition(std::uint64_t position) override { position_ = position; }

    std::vector<std::uint8_t> Read(std::size_t count) override {
        std::vector<std::uint8_t> bytes;
        if (position_ < kept_) {
            ground_->SetPosition(position_);
            bytes = ground_->Read(
                static_cast<std::size_t>(std::min<std::uint64_t>(count, kept_ - position_)));
            position_ += bytes.size();
        }
        // Nothing of what is behind where the file that is there has become shorter.
        if (position_ >= kept_ && bytes.size() < count) {
            const auto from = std::min<std::uint64_t>(position_ - kept_, added_->size());
            const std::string_view rest = std::string_view(*added_).substr(
                static_cast<std::size_t>(from), count - bytes.size());
            bytes.insert(bytes.end(), rest.begin(), rest.end());
            position_ += rest.size();
        }
        return bytes;
    }

  private:
    std::unique_ptr<BinaryReader> ground_;
    std::uint64_t kept_;
    std::shared_ptr<const std::string> added_;
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
    changed.kept = std::min(kept, position);
    std::string end = added->substr(0, static_cast<std::size_t>(position - changed.kept));
    end.append(bytes.begin(), bytes.end());
    changed.added = std::make_shared<const std::string>(std::move(end));
    return changed;
}

std::unique_ptr<BinaryReader> PreviewContent::Open(Files& files) const {
    auto reader = ground.empty() ? nullptr : files.OpenBinary(ground);
    return std::make_unique<PreviewReader>(std::move(reader), *this);
}

}  // namespace quillon
