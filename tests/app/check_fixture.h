#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/app/program_test.h"

namespace quillon {

/// A host folder as `init` makes it, to be spoiled and checked.
class CheckFixture : public ProgramTest {
  protected:
    CheckFixture() {
        MakeFolder("Music/Alder/First Light");
        Write("Music/Alder/First Light/01 - Dawn.mp3", "sound");
        CallProgram({"init", Path("shelf"), "--music", Path("Music")});
    }
    ProgramResult Check() const { return CallProgram({"check", "--host", Path("shelf")}); }

    /// Replaces a line of the host's own settings.
    void SetHostLine(const std::string& line, const std::string& now) const {
        std::string settings = Read("shelf/host.ini");
        settings.replace(settings.find("\n" + line + "\n") + 1, line.size(), now);
        Write("shelf/host.ini", settings);
    }
    /// Puts a value in the place of the one that init wrote.
    void Set(const std::string& key, const std::string& value) const {
        std::string settings = Read("shelf/Quillon.ini");
        const std::size_t start = settings.find("\n" + key + "=") + key.size() + 2;
        settings.replace(start, settings.find('\n', start) - start, value);
        Write("shelf/Quillon.ini", settings);
    }
    /// Switches on this mode alone.
    void Choose(const std::string& mode) const {
        Set("Reconcile", "0");
        Set(mode, "1");
    }
    void Execute(const std::string& sql) const {
        const ProgramResult result = CallProgram({"db", "exec", Path("shelf/jukebox.mdb"), sql});
        ASSERT_EQ(result.status, 0) << result.err;
    }

    /// Gives the library an album with these files.
    void AddOwnedTracks(const std::vector<std::string>& soundFiles) const {
        Execute("INSERT INTO Albums (CDJID, Title, Artist, Player) VALUES ('1', 'T', 'A', 1001)");
        for (const std::string& soundFile : soundFiles) {
            Execute("INSERT INTO Tracks (CDJID, Track, SoundFile) VALUES ('1', 1, '" + soundFile +
                    "')");
        }
    }

    /// What stands behind a heading, up to the next blank line.
    static std::string Section(const std::string& out, const std::string& heading) {
        const std::size_t start = out.find("\n" + heading + "\n");
        if (start == std::string::npos) return "";
        const std::size_t lines = start + heading.size() + 2;
        return out.substr(lines, out.find("\n\n", lines) - lines);
    }
    /// The findings of that title, each on one line.
    static std::string Findings(const ProgramResult& result, const std::string& title) {
        std::string text = Section(result.out, title);
        for (std::size_t at = 0; (at = text.find("\n    ", at)) != std::string::npos;)
            text.replace(at, 5, " ");
        return text;
    }
    std::string Problems() const { return Findings(Check(), "Problems"); }
    std::string Cautions() const { return Findings(Check(), "Worth a look"); }

    static bool Has(std::string_view text, std::string_view part) {
        return text.find(part) != std::string_view::npos;
    }
};

}  // namespace quillon
