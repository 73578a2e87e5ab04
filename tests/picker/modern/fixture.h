#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/thumbnails.h"
#include "tests/picker/fixture.h"

namespace quillon {

/// Makes thumbnails that tell what they are of; images that begin with "bad" are none.
class FakeThumbnails : public Thumbnails {
  public:
    void Require() override {
        if (isMissing) throw Failure(FailureNumber::ObjectRequired, "library");
    }

    Thumbnail Make(std::string_view image, int) override {
        made.emplace_back(image);
        if (image.starts_with("bad")) return {.jpeg = "", .problem = "is not an image"};
        return {.jpeg = "small " + std::string(image), .problem = ""};
    }

    std::vector<std::string> made;
    bool isMissing = false;
};

/// The album picker with its modern pages.
class ModernFixture : public PickerFixture {
  protected:
    ModernFixture() {
        run.modern.hasModernPicker = true;
        run.thumbnails = &thumbnails;
    }

    std::string File(std::string_view name) const {
        return files.Content(std::string(Folder) + '\\' + std::string(name));
    }

    void AddAlbumWithCover(const std::string& cdjid, const std::string& cover,
                           const std::string& bytes) {
        AddAlbum({.cdjid = cdjid,
                  .artist = "Alder",
                  .title = "Album " + cdjid,
                  .image = R"(D:\Covers\)" + cover});
        files.AddFile(R"(D:\Covers\)" + cover, bytes, MakeDateTime(2020, 1, 1));
    }

    std::vector<std::string> ThumbnailNames() { return Names(ThumbnailFolder); }

    /// Builds once more; the calls that changed something.
    std::vector<std::string> ChangesOfAnotherBuild() {
        world.calls.Forget();
        Build();
        return world.calls.Of({"Create", "Copy", "Delete", "Move", "Name ", "Write", "Discard"});
    }

    static constexpr const char* ThumbnailFolder =
        R"(C:\HomeSeer\HTML\Quillon\albumcovers\thumbnails)";

    FakeThumbnails thumbnails;
};

}  // namespace quillon
