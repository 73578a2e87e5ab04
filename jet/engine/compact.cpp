#include "jet/compact.h"

#include <system_error>

#include "jet/check.h"
#include "jet/error.h"
#include "jet/storage/database_file.h"
#include "jet/storage/file_system.h"
#include "jet/storage/pending_journal.h"
#include "jet/storage/system_file.h"
#include "jet/verify/check_pages.h"

namespace jet {

namespace {

namespace fs = std::filesystem;

/// The unfinished copy; gone with this object unless it has been given its name.
class Copy {
  public:
    explicit Copy(fs::path path) : path_(std::move(path)) { Remove(); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;
    ~Copy() { Remove(); }
    const fs::path& Path() const { return path_; }

  private:
    void Remove() const {
        std::error_code ignored;
        fs::remove(path_, ignored);
        fs::remove(storage::JournalPathFor(path_), ignored);
    }
    fs::path path_;
};

void RequireWhole(const CheckReport& report, const fs::path& file) {
    if (report.faults.empty()) return;
    throw Error(ErrorKind::Damaged, file.string() + " is damaged: " + report.faults.front().text +
                                        ". Nothing was changed.");
}

/// "cdj.before-compact.mdb", with a number where that is taken.
fs::path NameToKeep(const fs::path& file) {
    for (int number = 1;; ++number) {
        std::string name = file.stem().string() + ".before-compact";
        if (number > 1) name += "-" + std::to_string(number);
        fs::path kept = file.parent_path() / (name + file.extension().string());
        if (!fs::exists(fs::symlink_status(kept))) return kept;
    }
}

}  // namespace

Compacted CompactDatabase(const fs::path& database) {
    const auto files = storage::RealFileSystem();
    const fs::path real = files->Resolve(database);
    const auto inspect = [&](storage::PageStore& pages) {
        RequireWhole(verify::CheckPages(pages), real);
        return true;
    };
    auto file =
        storage::DatabaseFile::Open(real, OpenMode::ReadWrite, {.needs = {}, .inspect = inspect});
    const Copy copy(real.string() + ".compact");
    Compacted done;
    done.tables = file.TableNames().size();
    done.rows = file.WriteCompacted(copy.Path());
    RequireWhole(CheckFile(copy.Path()), copy.Path());
    done.sizeBefore = fs::file_size(real);
    done.size = fs::file_size(copy.Path());
    done.kept = NameToKeep(real);
    storage::Exchange(real, copy.Path(), done.kept);
    files->SyncFolderOf(real);
    file.Discard();
    return done;
}

}  // namespace jet
