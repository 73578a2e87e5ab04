#pragma once

// The system's headers as this program needs them. They define macros for everyday names, which
// would rename this program's own functions wherever they happen to be included before.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// Which needs the one above.
#include <shellapi.h>

#undef CopyFile
#undef CreateFile
#undef DeleteFile
#undef DrawText
#undef GetMessage
#undef MoveFile
#undef RemoveDirectory
#undef small
