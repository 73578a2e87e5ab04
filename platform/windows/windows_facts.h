#pragma once

#include <string>

#include "platform/portable/local_file.h"
#include "platform/windows/system_error.h"

namespace quillon {

/// What of a file's attributes a copy takes over.
constexpr DWORD KeptAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                 FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

/// A moment from the system's count, steps of 100 nanoseconds from 1601 on, and back.
FileTime TimeOf(std::int64_t steps);
std::int64_t StepsOf(const FileTime& time);

/// The error number for what this thread's last call failed with at a path as WidePath() gives it.
/// ENODEV where not even its drive or share is there: nothing is known then of what lies on it, and
/// it must not count as gone. ENOTDIR where the path leads through a file.
int LastErrnoAt(const std::wstring& path);

/// Whether a name of these attributes, and of this kind of reparse point, is a link: others, such
/// as files that lie in a cloud, are what they seem.
bool IsLink(DWORD attributes, DWORD tag);

/// What an open file or folder is. Nothing, with errno set, where the system does not tell.
std::optional<FileFacts> FactsOfHandle(HANDLE handle);

/// A descriptor of the standard library that owns the handle; -1 with errno set where the handle is
/// none, or no descriptor is left.
int DescriptorOf(HANDLE handle, int flags);

/// Sets what a file's facts hold of its attributes, and perhaps its modification time. 0 or the
/// error number.
int SetAttributes(HANDLE handle, DWORD kept);
int SetModifiedTime(HANDLE handle, const FileTime& modified);

}  // namespace quillon
