#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "picker/layout.h"
#include "picker/modern/album_pages.h"
#include "picker/modern/buttons.h"
#include "picker/modern/catalogue.h"
#include "picker/modern/frame.h"
#include "picker/modern/view_pages.h"
#include "picker/modern/views.h"

namespace quillon {

class Run;

/// All files that the modern pages consist of.
class ModernPageSet {
  public:
    /// All must outlive this object.
    ModernPageSet(Run& run, const PickerLayout& layout, const Catalogue& catalogue);

    /// Whether the folder holds just these files. Looks no further than the first that is another.
    bool IsIn(std::string_view folder) const;

    /// Writes the files into an empty folder and counts the pages. False after an abort.
    bool WriteTo(std::string_view folder) const;

  private:
    /// Takes a file; false: no further one is wanted.
    using Take = std::function<bool(std::string_view name, const std::string& text)>;

    /// Gives all files, one after the other; false when it was ended before the last, by the taker
    /// or by an abort.
    bool Give(const Take& take) const;

    Run& run_;
    std::string albumsData_, tracksData_;
    std::vector<PickerView> views_;
    std::unique_ptr<PlayerButtons> buttons_;
    PageFrame frame_;
    ViewPages viewPages_;
    AlbumPages albumPages_;
    std::size_t albumCount_;
};

}  // namespace quillon
