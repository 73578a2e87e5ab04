#include "picker/page_files.h"

#include <memory>
#include <string>

#include "platform/files.h"

namespace quillon {

void WritePickerFile(Run& run, std::string_view folder, std::string_view name,
                     std::string_view text) {
    const std::unique_ptr<TextWriter> file =
        run.files.CreateText(std::string(folder) + '\\' + std::string(name));
    file->Write(text);
    file->Close();
}

void ShowPageItem(Run& run, std::size_t page, const PickerAlbum& album) {
    run.ShowItem("3. On Page " + std::to_string(page) + ", Artist " + album.artist);
}

}  // namespace quillon
