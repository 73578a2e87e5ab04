#include "picker/modern/modern_picker.h"

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "picker/album_picker.h"
#include "picker/covers.h"
#include "picker/folders.h"
#include "picker/layout.h"
#include "picker/locations.h"
#include "picker/modern/catalogue.h"
#include "picker/modern/page_set.h"
#include "picker/modern/thumbnails.h"
#include "picker/page_files.h"
#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// One making of the pages, step by step.
class ModernBuild {
  public:
    ModernBuild(Run& run, const PickerLocations& locations)
        : run_(run), locations_(locations), steps_(run, "BuildcdjPages ") {}

    /// Reads what is shown and provides the images. False after a failure or an abort.
    bool Prepare() {
        return Step(PagesStep::LayOut, [&] { layout_.emplace(run_.settings); }) &&
               Step(PagesStep::ReadAlbums, [&] { Read(); }) &&
               Step(PagesStep::CopyCovers,
                    [&] {
                        CopyCovers(run_, steps_, locations_.webCoverFolder, catalogue_.all.albums);
                    }) &&
               Step(PagesStep::CopyCovers,
                    [&] {
                        thumbnails_.emplace(run_, locations_.webCoverFolder);
                        thumbnails_->Fill(steps_, catalogue_);
                    }) &&
               Step(PagesStep::WritePages, [&] { set_.emplace(run_, *layout_, catalogue_); });
    }

    /// Whether the pages are as they should be already; nothing after a failure or an abort.
    std::optional<bool> IsUpToDate() {
        bool result = false;
        const bool known =
            Step(PagesStep::WritePages, [&] { result = set_->IsIn(locations_.pageFolder); });
        return known ? std::optional(result) : std::nullopt;
    }

    bool Write(std::string_view folder) {
        return Step(PagesStep::WritePages, [&] { set_->WriteTo(folder); });
    }

    void RemoveOldThumbnails() {
        Step(PagesStep::CopyCovers, [&] { thumbnails_->RemoveOthers(); });
    }

  private:
    template <typename Work>
    bool Step(PagesStep step, Work&& work) {
        return GoesOn(run_, steps_, step, work);
    }

    void Read() {
        const std::unique_ptr<Connection> connection = OpenPickerConnection(run_);
        PickerAlbums albums = ReadPickerAlbums(run_, *connection);
        catalogue_ = MakeCatalogue(std::move(albums), *connection);
    }

    Run& run_;
    const PickerLocations& locations_;
    Steps steps_;
    std::optional<PickerLayout> layout_;
    Catalogue catalogue_;
    std::optional<ThumbnailFolder> thumbnails_;
    std::optional<ModernPageSet> set_;
};

}  // namespace

void BuildModernPages(Run& run, Steps& steps, const PickerLocations& locations, PageFolder& pages) {
    // What a killed build has left is put right first, so that the set that is compared is the
    // last.
    if (!steps.Try(PickerStep::ReplacePages, [&] { pages.Restore(); })) return;
    ModernBuild build(run, locations);
    if (!build.Prepare()) return;
    const std::optional<bool> upToDate = build.IsUpToDate();
    if (!upToDate) return;
    if (*upToDate || ReplacePages(run, steps, pages, [&] { return build.Write(pages.Draft()); }))
        build.RemoveOldThumbnails();
}

}  // namespace quillon
