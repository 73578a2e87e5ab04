#include "platform/portable/removed_files.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "platform/basic_text.h"
#include "platform/portable/file_handle.h"
#include "platform/portable/local_file.h"
#include "platform/portable/safe_file.h"
#include "platform/portable/system_failure.h"
#include "platform/portable/temporary_entry.h"
#include "platform/stamp.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// The root as folder names: "D" of "D:", "nas/music" of "\\nas\music".
std::string FolderNameOf(std::string root) {
    std::erase(root, ':');
    std::replace(root.begin(), root.end(), '\\', '/');
    return root.substr(std::min(root.find_first_not_of('/'), root.size()));
}

/// The path as it is, then with " (2)", " (3)" and so on behind the name.
fs::path Numbered(const fs::path& path, int number) {
    if (number == 1) return path;
    const std::string name = path.stem().string() + " (" + std::to_string(number) + ')';
    return path.parent_path() / (name + path.extension().string());
}

/// Copies a file and removes it then; the system's error number, EEXIST for a name that is taken.
void MoveByCopy(const std::string& from, const std::string& to, const std::string& shown) {
    {
        const int descriptor = OpenLocal(from, FileUse::Read);
        if (descriptor < 0) throw SystemFailure(errno, shown, FailureNumber::FileNotFound);
        const FileHandle source(descriptor, shown);
        const FileFacts facts = source.Facts();
        SafeFile copy(to, shown, SafeFile::Existing::Refuse, facts.rights);
        copy.WriteFrom(source);
        copy.SetModified(facts.modified);
        copy.Commit();
    }
    const int error = RemoveFile(from);
    if (error == 0) return;
    RemoveEntry(to);
    throw SystemFailure(error, shown);
}

/// A link that is moved must lead where it led before.
int MoveLink(const std::string& from, const std::string& to) {
    std::error_code error;
    const fs::path target = fs::canonical(from, error);
    if (!error) fs::create_symlink(target, to, error);
    if (error) return error.value();
    return RemoveFile(from);
}

}  // namespace

fs::path RemovedFiles::PlaceFor(const WindowsPath& shown) {
    const fs::path wanted = FolderOfRun() / FolderNameOf(shown.root) / shown.rest;
    std::error_code failed;
    for (int number = 1;; ++number) {
        fs::path place = Numbered(wanted, number);
        const fs::file_type there = fs::symlink_status(place, failed).type();
        if (there == fs::file_type::not_found || there == fs::file_type::none) return place;
    }
}

fs::path RemovedFiles::Take(const std::string& local, const WindowsPath& shown) {
    const std::string concerning = shown.Text() + " (to be kept in " + folder_.string() + ')';
    const fs::path wanted = FolderOfRun() / FolderNameOf(shown.root) / shown.rest;
    std::error_code failed;
    fs::create_directories(wanted.parent_path(), failed);
    if (failed) throw SystemFailure(failed.value(), concerning);
    const bool isLink = fs::is_symlink(local, failed);
    for (int number = 1;; ++number) {
        fs::path target = Numbered(wanted, number);
        if (fs::symlink_status(target, failed).type() != fs::file_type::not_found) continue;
        const int error =
            isLink ? MoveLink(local, target.string()) : RenameToFreeName(local, target.string());
        if (error == EEXIST) continue;
        if (error == EXDEV) {
            MoveByCopy(local, target.string(), concerning);
        } else if (error != 0) {
            throw SystemFailure(error, concerning, FailureNumber::FileNotFound);
        }
        return target;
    }
}

void RemovedFiles::RemoveUnfinished() const {
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder_, error), end; !error && entry != end;
         entry.increment(error)) {
        if (!IsTemporaryName(entry->path().filename().string())) continue;
        RemoveAbandoned(entry->path().parent_path().string());
    }
}

const fs::path& RemovedFiles::FolderOfRun() {
    if (ofRun_.empty()) ofRun_ = folder_ / StampText(clock_.Now());
    return ofRun_;
}

}  // namespace quillon
