#include "app/thumbnails.h"

#include "platform/failure.h"

namespace quillon {
namespace {

class NoThumbnails final : public Thumbnails {
  public:
    void Require() override {
        throw Failure(FailureNumber::ObjectRequired,
                      "small pictures of covers cannot be made on Windows");
    }
    Thumbnail Make(std::string_view /*image*/, int /*side*/) override {
        return {"", "cannot be made small on Windows"};
    }
};

}  // namespace

std::unique_ptr<Thumbnails> MakeThumbnails() {
    return std::make_unique<NoThumbnails>();
}

}  // namespace quillon
