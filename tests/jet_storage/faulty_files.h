#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/storage/file_system.h"

namespace jet::storage::test {

/// The system's files, of which one operation fails or after which the machine loses power.
///
/// Operations that change something (write, reserve, flush, rename, remove) are counted. Power loss
/// drops a random part of what was not flushed: single writes (a part of one, even), renamings and
/// removals.
class FaultyFileSystem final : public FileSystem,
                               public std::enable_shared_from_this<FaultyFileSystem> {
  public:
    explicit FaultyFileSystem(std::uint32_t seed) : real_(RealFileSystem()), random_(seed) {}

    enum class Fault {
        OneError,   ///< the operation throws, the next ones work
        DiskFull,   ///< it and all writes behind it throw until Repair()
        PowerLoss,  ///< it and all behind it throw; LosePower() then decides what is on the disk
    };
    /// Lets the operation fail that comes after `operations` others.
    void FailAfter(std::size_t operations, Fault fault);
    void Repair() { armed_ = broken_ = false; }
    /// Whether the fault has happened.
    bool HasFailed() const { return failed_; }

    /// Brings the disk into a state that power loss may leave.
    void LosePower();

    std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) override;
    bool Exists(const std::filesystem::path& path) override;
    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void Remove(const std::filesystem::path& path) override;
    void SyncFolderOf(const std::filesystem::path& path) override;

  private:
    class FaultyFile;
    struct Write {
        std::uint64_t offset;
        std::string before;
        std::uint64_t sizeBefore;
    };
    struct NameChange {
        std::filesystem::path name;
        bool existed;
        std::string content;  ///< of the file that had the name
    };

    void Count(bool isWrite);
    void NoteName(const std::filesystem::path& name);

    std::shared_ptr<FileSystem> real_;
    std::mt19937 random_;
    bool armed_ = false, broken_ = false, failed_ = false;
    Fault fault_ = Fault::OneError;
    std::size_t left_ = 0;
    std::map<std::filesystem::path, std::vector<Write>> unflushed_;
    std::vector<NameChange> unflushedNames_;
};

}  // namespace jet::storage::test
