#pragma once

#include <string>

#include "jet/error.h"

namespace jet::storage {

/// Reports a contradiction in the file. `what` says where and what, without the file's name:
/// NamingFile() adds that.
[[noreturn]] inline void ThrowDamaged(const std::string& what) {
    throw Error(ErrorKind::Damaged, what);
}

/// Calls `action`; a contradiction found deep in the file's structures gets the file's name.
template <typename Action>
decltype(auto) NamingFile(const std::string& file, Action action) {
    try {
        return action();
    } catch (const Error& error) {
        const std::string what = error.what();
        if (error.Kind() != ErrorKind::Damaged || what.find(file) != std::string::npos) throw;
        throw Error(ErrorKind::Damaged, file + " is damaged: " + what + ".");
    }
}

}  // namespace jet::storage
