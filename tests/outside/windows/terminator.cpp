// terminator FILE MICROSECONDS PROGRAM ARGUMENT...
// Runs a program, waits until FILE is there, then as long again as told, and ends the program at
// once. Ends with 137 if it did that, else as the program. "never": tells for how many microseconds
// FILE was there instead.
#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include "platform/windows/system_headers.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr UINT KilledStatus = 137;

/// A program that has been started.
class Program {
  public:
    explicit Program(std::wstring commandLine) {
        STARTUPINFOW start{};
        start.cb = sizeof start;
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &start, &process_);
    }
    ~Program() {
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    bool IsThere() const { return process_.hProcess != nullptr; }
    bool HasEnded() const { return WaitForSingleObject(process_.hProcess, 0) != WAIT_TIMEOUT; }
    void Kill() const { TerminateProcess(process_.hProcess, KilledStatus); }

    /// Waits for its end.
    DWORD Status() const {
        WaitForSingleObject(process_.hProcess, INFINITE);
        DWORD status = 0;
        GetExitCodeProcess(process_.hProcess, &status);
        return status;
    }

  private:
    PROCESS_INFORMATION process_{};
};

bool IsFile(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// Waits without sleep, which would last longer than what is looked for.
template <typename Condition>
void WaitFor(const Program& program, const Condition& condition) {
    while (!condition() && !program.HasEnded())
        std::this_thread::yield();
}

std::wstring Quoted(const std::wstring& word) {
    return L'"' + word + L'"';
}

}  // namespace

int main() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (words == nullptr || count < 4) return 2;
    const std::wstring file = words[1], microseconds = words[2];
    std::wstring commandLine;
    for (int i = 3; i < count; ++i)
        commandLine += (i > 3 ? L" " : L"") + Quoted(words[i]);
    LocalFree(words);

    const Program program(commandLine);
    if (!program.IsThere()) return 2;
    WaitFor(program, [&] { return IsFile(file); });
    const auto begin = Clock::now();
    if (microseconds == L"never") {
        WaitFor(program, [&] { return !IsFile(file); });
        const auto lasted = Clock::now() - begin;
        std::cout << "\nlasted "
                  << std::chrono::duration_cast<std::chrono::microseconds>(lasted).count() << '\n';
    } else {
        const auto end = begin + std::chrono::microseconds(std::stol(microseconds));
        WaitFor(program, [&] { return Clock::now() >= end; });
        program.Kill();
    }
    return static_cast<int>(program.Status());
}
