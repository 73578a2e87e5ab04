#pragma once

#include <string>

#include "jet/error.h"

namespace jet::storage {

/// Reports a contradiction in the file. `what` says where and what, without the file's name:
/// NamingFile() adds that.
[[noreturn]] inline void ThrowDamaged(const std::string& what) {
    throw Error(ErrorKind::Damaged, what);
}

/// Such a contradiction together with the file that it is in.
class DamagedFile : public Error {
  public:
    DamagedFile(const std::string& file, const std::string& what)
        : Error(ErrorKind::Damaged, file + " is damaged: " + what + "."),
          file_(file),
          what_(what) {}
    const std::string& File() const { return file_; }
    const std::string& What() const { return what_; }  ///< without the file's name

  private:
    std::string file_, what_;
};

/// Calls `action`; a contradiction found deep in the file's structures gets the file's name.
template <typename Action>
decltype(auto) NamingFile(const std::string& file, Action action) {
    try {
        return action();
    } catch (const DamagedFile&) {
        throw;
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::Damaged) throw;
        throw DamagedFile(file, error.what());
    }
}

}  // namespace jet::storage
