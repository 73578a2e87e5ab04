#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "reconcile/file_list.h"

namespace quillon {

/// Kept because other programs know the class by these members; the walk has a plain list of files.
///
/// The files of one album in the flat layout.
class Flat {
  public:
    Flat() { Class_Initialize(); }

    /// Makes the collection empty.
    void Class_Initialize() { files_.clear(); }

    void cdjid(std::string value) { cdjid_ = std::move(value); }
    const std::string& cdjid() const { return cdjid_; }

    void Add(ListedFile file) { files_.push_back(std::move(file)); }
    const FileList& GetNames() const { return files_; }

    /// Number of files. Failure: Overflow above 32767.
    std::int16_t Size() const;

    std::int16_t TrackNumber() const { return trackNumber_; }
    /// Stores what the getter returns, not its argument: the number is 0 for good.
    void TrackNumber(std::int16_t ignored);

  private:
    FileList files_;
    std::string cdjid_;
    std::int16_t trackNumber_ = 0;
};

}  // namespace quillon
