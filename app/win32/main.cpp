#include <string>
#include <vector>

#include "app/program.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide_text.h"

/// The words of the command line as the system has them: those that main() gets have been through a
/// code page, which may not have all their letters.
int main(int argumentCount, char** arguments) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (words == nullptr) return quillon::RunProgram(argumentCount, arguments);
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i)
        texts.push_back(quillon::NarrowText(words[i]));
    LocalFree(words);
    std::vector<const char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(text.c_str());
    pointers.push_back(nullptr);
    return quillon::RunProgram(count, pointers.data());
}
