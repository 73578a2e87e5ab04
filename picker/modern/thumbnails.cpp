#include "picker/modern/thumbnails.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "picker/album_picker.h"
#include "picker/cover_names.h"
#include "picker/folders.h"
#include "platform/basic_text.h"
#include "platform/content_hash.h"
#include "platform/date_time.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "platform/thumbnails.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

/// What is larger is no cover, and is not taken into memory.
constexpr std::uint64_t LargestCover = std::uint64_t{32} << 20U;
constexpr const char* Ending = ".jpg";
constexpr const char* NoteEnding = ".txt";
constexpr std::size_t NameLength = 16;
constexpr std::string_view HashDigits = "0123456789abcdef";

std::string HexText(std::uint64_t number) {
    std::string text(NameLength, '0');
    for (std::size_t i = NameLength; i > 0; --i, number /= 16)
        text[i - 1] = HashDigits[number % 16];
    return text;
}

/// Whether a file's name is one that thumbnails and notes have; all others are somebody else's.
bool IsOwnName(std::string_view name) {
    return name.find_first_not_of(HashDigits) == NameLength &&
           (name.substr(NameLength) == Ending || name.substr(NameLength) == NoteEnding);
}

Thumbnail ThumbnailOf(Run& run, const std::string& path) {
    const std::unique_ptr<BinaryReader> file = run.files.OpenBinary(path);
    const std::uint64_t size = file->Size();
    if (size > LargestCover) return {.jpeg = "", .problem = "is too large a file for a cover"};
    const std::vector<std::uint8_t> bytes = file->Read(static_cast<std::size_t>(size));
    return run.thumbnails->Make({reinterpret_cast<const char*>(bytes.data()), bytes.size()},
                                ThumbnailSide);
}

/// Files that are written in groups. The first that cannot be written ends it all.
class ThumbnailWriter {
  public:
    explicit ThumbnailWriter(Files& files)
        : batch_(files.CreateTexts([this](const Failure* failure) {
              if (failure != nullptr && !failure_) failure_ = *failure;
          })) {}

    void Write(const std::string& path, const std::string& bytes) {
        batch_->Write(path, bytes);
        ThrowFailure();
    }

    void Close() {
        batch_->Close();
        ThrowFailure();
    }

  private:
    void ThrowFailure() const {
        if (failure_) throw Failure(*failure_);
    }

    std::optional<Failure> failure_;
    std::unique_ptr<TextBatch> batch_;
};

}  // namespace

ThumbnailFolder::ThumbnailFolder(Run& run, std::string_view webCoverFolder)
    : run_(run),
      covers_(webCoverFolder),
      folder_(covers_ + std::string(ThumbnailFolderName) + '\\'),
      hasOwnStandIn_(
          run.files.FileExists(run.settings.AlbumCoverFolder + std::string(PlaceholderName))) {}

/// Initials stand for a missing cover, unless the household has an image of its own for that.
bool ThumbnailFolder::IsStandIn(const std::string& coverFile) const {
    return coverFile == PlaceholderName && !hasOwnStandIn_;
}

std::string ThumbnailFolder::NameFor(const std::string& coverFile) const {
    const FileEntry cover = run_.files.GetFile(covers_ + coverFile);
    return HexText(ContentHash(LowerCase(coverFile) + '|' + std::to_string(cover.size) + '|' +
                               SortableDateTimeText(cover.modified) + '|' +
                               std::to_string(ThumbnailSide)));
}

void ThumbnailFolder::Fill(Steps& steps, Catalogue& catalogue) {
    if (run_.thumbnails == nullptr) throw Failure(FailureNumber::ObjectRequired, "thumbnails");
    MakeFolders(run_.files, folder_);
    const FolderNames names = run_.files.NamesIn(folder_);
    present_ = {names.files.begin(), names.files.end()};

    Names nameOf;
    std::vector<Wanted> missing;
    for (const PickerAlbum& album : catalogue.all.albums) {
        const std::string& cover = album.coverFile;
        if (IsStandIn(cover) || nameOf.contains(cover)) continue;
        std::string& name = nameOf[cover];
        steps.Try(PagesStep::CopyCovers, [&] { name = NameFor(cover); });
        if (!name.empty() && !Has(name + Ending) && !Has(name + NoteEnding))
            missing.push_back({cover, name});
    }
    // Without the means there are those that were made before.
    const auto require = [&] { run_.thumbnails->Require(); };
    if (!missing.empty() && steps.Try(PagesStep::CopyCovers, require)) Make(steps, missing);
    Give(nameOf, catalogue);
}

void ThumbnailFolder::Make(Steps& steps, const std::vector<Wanted>& missing) {
    ThumbnailWriter writer(run_.files);
    for (const Wanted& wanted : Counted(run_, missing)) {
        run_.ProcessEvents();
        if (run_.AbortRequested) return;
        std::optional<Thumbnail> thumbnail;
        steps.Try(PagesStep::CopyCovers,
                  [&] { thumbnail = ThumbnailOf(run_, covers_ + wanted.cover); });
        if (!thumbnail) continue;
        const bool isImage = thumbnail->problem.empty();
        const std::string file = wanted.name + (isImage ? Ending : NoteEnding);
        if (!isImage) {
            const std::string found = "Album Cover " + wanted.cover + ' ' + thumbnail->problem +
                                      "; initials stand for it";
            WriteLog(run_, LogSource, found);
            thumbnail->jpeg = found + "\r\n";
        }
        writer.Write(folder_ + file, thumbnail->jpeg);
        present_.insert(file);
    }
    writer.Close();
}

void ThumbnailFolder::Give(const Names& nameOf, Catalogue& catalogue) {
    for (std::size_t i = 0; i < catalogue.Count(); ++i) {
        const auto found = nameOf.find(catalogue.all.albums[i].coverFile);
        if (found == nameOf.end() || found->second.empty()) continue;
        const std::string file = found->second + Ending;
        if (Has(file)) catalogue.extras[i].thumbnail = file;
        used_.insert(Has(file) ? file : found->second + NoteEnding);
    }
}

void ThumbnailFolder::RemoveOthers() {
    for (const std::string& file : present_)
        if (IsOwnName(file) && !used_.contains(file)) run_.files.DeleteFile(folder_ + file);
}

}  // namespace quillon
