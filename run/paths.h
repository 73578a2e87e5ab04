#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// Whether a folder setting names one: a setting that was left empty has become a lone backslash.
bool NamesFolder(std::string_view setting);

/// Appends "\" unless the last character is one already (an empty path becomes "\").
std::string AddBackslash(std::string_view path);

/// The path in the one spelling that all parts of the program share: "\\" for "/" and single
/// backslashes, but for the two before a server's name. What was well-formed stays as it is.
std::string PlainPath(std::string_view written);

/// Whether a folder, with or without a backslash at its end, is a whole drive or share (`P:\`,
/// `\\server\share`): nothing can lie beside it.
bool IsDriveRoot(std::string_view folder);

/// A folder as a listing would give it, so that the paths made below it look the same whichever way
/// it was written: a plain path without a backslash at its end but that of a drive's root.
std::string FolderPath(std::string_view written);

/// A web path: every "\" becomes "/", with "/" at both ends; empty stays empty.
std::string FixPath(std::string_view path);

/// The drive part: `D:` of `D:\music`, `\\server\share` of a network path, "" where there is none.
std::string GetDrive(std::string_view path);

/// Every occurrence of the path's own drive part replaced by `newDrive`.
std::string ChangeDrive(std::string_view newDrive, std::string_view path);

/// A path's last component.
std::string_view LastName(std::string_view path);

/// Whether a folder of this name is what a file system keeps for itself; only root may look into
/// it.
bool IsOfFileSystem(std::string_view name);

/// A file's name without its folders and without its last extension; slashes of both kinds part
/// folders, so that it serves web addresses as well.
std::string GetBaseName(std::string_view path);

}  // namespace quillon
