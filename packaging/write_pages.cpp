#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "app/command_line.h"
#include "app/version.h"
#include "packaging/completions.h"
#include "packaging/roff.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    if (!in) throw std::runtime_error("cannot read " + file.string());
    return text;
}

void WriteFile(const fs::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary);
    out << text;
    out.close();
    if (!out) throw std::runtime_error("cannot write " + file.string());
}

void WritePages(const fs::path& frames, const fs::path& folder, const std::string& date) {
    const CommandDescription program = DescribeCommandLine();
    const auto write = [&](const std::string& page, std::map<std::string, std::string> parts) {
        parts["DATE"] = date;
        parts["VERSION"] = ProgramVersion;
        WriteFile(folder / page, FillFrame(ReadFile(frames / (page + ".in")), parts));
    };
    write("quillon.1", CommandParts(program));
    write("quillon-settings.5", SettingParts());
    WriteFile(folder / "quillon.bash", BashCompletion(program));
    WriteFile(folder / "_quillon", ZshCompletion(program));
    WriteFile(folder / "quillon.fish", FishCompletion(program));
}

}  // namespace
}  // namespace quillon

/// Makes the manual pages and completions when the program is built:
/// write_pages FRAMES FOLDER DATE
int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::cerr << "usage: write_pages FRAMES FOLDER DATE\n";
        return 2;
    }
    try {
        quillon::WritePages(arguments[1], arguments[2], arguments[3]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "write_pages: " << error.what() << '\n';
        return 1;
    }
}
