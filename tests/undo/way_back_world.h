#pragma once

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "changes/journalled_files.h"
#include "changes/preview_files.h"
#include "platform/failure.h"
#include "platform/portable/portable_files.h"
#include "platform/portable/system_clock.h"
#include "tests/outside/temporary_folder.h"
#include "tests/support/record_list.h"
#include "undo/announced_steps.h"
#include "undo/file_steps.h"

namespace quillon {

using Outcomes = std::vector<std::string>;

/// What ends a process at once; nothing of the program catches it.
struct Killed {};

/// Real files, which end the process before or after one of the calls that change something.
class MortalFiles : public PortableFiles {
  public:
    MortalFiles(PathResolver& resolver, int calls, bool after)
        : PortableFiles(resolver, [](LogKind, const std::string&) {}),
          left_(calls),
          after_(after) {}

    void CreateFolder(std::string_view path) override {
        Do([&] { PortableFiles::CreateFolder(path); });
    }
    void CopyFile(std::string_view from, std::string_view to, bool overwrite) override {
        Do([&] { PortableFiles::CopyFile(from, to, overwrite); });
    }
    void DeleteFile(std::string_view path) override {
        Do([&] { PortableFiles::DeleteFile(path); });
    }
    void DeleteFolder(std::string_view path) override {
        Do([&] { PortableFiles::DeleteFolder(path); });
    }
    void Discard(std::string_view path) override {
        Do([&] { PortableFiles::Discard(path); });
    }
    void MoveFile(std::string_view from, std::string_view to) override {
        Do([&] { PortableFiles::MoveFile(from, to); });
    }
    void MoveFolder(std::string_view from, std::string_view to) override {
        Do([&] { PortableFiles::MoveFolder(from, to); });
    }
    void WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) override {
        Do([&] { PortableFiles::WriteEnd(path, seen, position, bytes); });
    }
    void ReplaceBytes(std::string_view path, const FilePiece& seen,
                      std::span<const std::uint8_t> bytes) override {
        Do([&] { PortableFiles::ReplaceBytes(path, seen, bytes); });
    }
    std::unique_ptr<TextWriter> CreateText(std::string_view path) override {
        return std::make_unique<Writer>(*this, PortableFiles::CreateText(path));
    }

  private:
    class Writer : public TextWriter {
      public:
        Writer(MortalFiles& files, std::unique_ptr<TextWriter> writer)
            : files_(files), writer_(std::move(writer)) {}
        void Write(std::string_view text) override { writer_->Write(text); }
        void WriteLine(std::string_view line) override { writer_->WriteLine(line); }
        void WriteBytes(std::string_view bytes) override { writer_->WriteBytes(bytes); }
        void Close() override {
            files_.Do([&] { writer_->Close(); });
        }
        bool CloseIf(const std::function<bool()>& isWanted) override {
            bool isClosed = false;
            files_.Do([&] { isClosed = writer_->CloseIf(isWanted); });
            return isClosed;
        }

      private:
        MortalFiles& files_;
        std::unique_ptr<TextWriter> writer_;
    };

    void Do(const std::function<void()>& work) {
        const bool isLast = left_ == 0;
        if (isLast && !after_) throw Killed();
        work();
        if (isLast) throw Killed();
        --left_;
    }

    int left_;
    bool after_;
};

/// What ends an undo before its end.
enum class End { Kill, PowerCut };

/// A disk on which a run has done something of each kind. The host folder is D:\host.
class World {
  public:
    World() : resolver_(Drives(folder_)) {
        for (const auto& [name, content] : Beginning)
            folder_.MakeFile(name, content);
        for (const auto& [name, content] : Beginning)
            std::filesystem::last_write_time(folder_ / name,
                                             std::filesystem::file_time_type::clock::now() -
                                                 std::chrono::hours(24 * (name.size() + 1)));
        before = State();
        Run();
        after = State();
    }

    /// Content and time of music, content of all else but what the host folder keeps; folders.
    std::map<std::string, std::string> State() const {
        std::map<std::string, std::string> state;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path())) {
            const std::string name =
                entry.path().lexically_relative(folder_.Path()).generic_string();
            if (name.starts_with("host/Changes") || name.starts_with("host/Removed")) continue;
            std::string& content = state[name];
            if (entry.is_directory()) continue;
            content = folder_.Content(name);
            if (name.ends_with(".mp3"))
                content += std::to_string(entry.last_write_time().time_since_epoch().count());
        }
        return state;
    }

    /// An undo of `targets` that ends before or after so many calls; the reasons of refusals. Its
    /// journal, of which a power cut leaves what was durable, goes into `undos`.
    Outcomes Undo(const std::string& stamp, int calls = 1000, bool afterCall = false,
                  End end = End::Kill) {
        MortalFiles files(resolver_, calls, afterCall);
        RecordList sink;
        sink.before = [&](const ChangeRecord&) { ++records; };
        Outcomes refused;
        RecordedRun undo{.stamp = stamp, .records = {}, .isWhole = false};
        try {
            refused = TakeBack(files, sink, stamp);
            undo.isWhole = true;
        } catch (const Killed&) {
            refused = {"killed"};
            if (end == End::PowerCut) sink.records.resize(sink.durable);
        }
        flushes = sink.flushes;
        undo.records = sink.records;
        undos.insert(undos.begin(), undo);
        return refused;
    }

    PathResolver& Resolver() { return resolver_; }

    void Rename(const char* from, const char* to) const {
        std::filesystem::rename(folder_ / from, folder_ / to);
    }

    /// What the run has kept beside its journal is gone.
    void RemoveKept() const { std::filesystem::remove_all(folder_ / "host/Changes"); }

    Outcomes Plan() {
        RecordList sink;
        PortableFiles files(resolver_, [](LogKind, const std::string&) {});
        PreviewFiles preview(files, clock_);
        return TakeBack(preview, sink, "2");
    }

    /// From now on undos take these back, the newest first.
    void GoBackBefore(std::vector<RecordedRun> runs) {
        undos.clear();
        targets = std::move(runs);
    }

    std::map<std::string, std::string> before, after;
    std::vector<RecordedRun> undos;    ///< the newest first
    std::vector<RecordedRun> targets;  ///< likewise: what an undo takes back
    std::set<std::string> held;        ///< paths of files whose rows stay
    std::size_t records = 0;           ///< of all undos
    std::size_t flushes = 0;           ///< of the last undo's journal

  private:
    static constexpr std::array<std::pair<const char*, const char*>, 13> Pairs{
        {{"Music/a.mp3", "a"},
         {"Music/b.mp3", "bb"},
         {"Music/c.mp3", "cc"},
         {"Music/lower.mp3", "letters"},
         {"Music/tag.mp3", "audio OLDTAG"},
         {"Music/none.mp3", "audio"},
         {"Music/twin.mp3", "twin"},
         {"Source/new.mp3", "new"},
         {"Source/new.jpg", "image"},
         {"Lists/Rock.pla", "broken"},
         {"Lists/Old.pla", "a generated list"},
         {"Covers/c.jpg", "old image"},
         {"host/HTML/Picker/index.asp", "old page"}}};
    inline static const std::map<std::string, std::string> Beginning{Pairs.begin(), Pairs.end()};

    static DriveTable Drives(const outside::TemporaryFolder& folder) {
        DriveTable drives(folder.Path());
        drives.Map("D", folder.Path());
        return drives;
    }

    static JournalledFiles::Keeping Keep(const std::string& stamp) {
        return {.folder = R"(D:\host\Changes\)" + stamp,
                .shownFolder = "Changes/" + stamp,
                .placeOfDeleted = [stamp](std::string_view path) -> std::optional<std::string> {
                    if (!path.ends_with(".mp3")) return std::nullopt;
                    return "Removed/" + stamp + std::string(path.substr(path.rfind('\\') + 1));
                },
                .isScratch = {}};
    }

    /// Deleted music goes to where the records say.
    void KeepDeleted(PortableFiles& files, const std::string& stamp) {
        files.OnDelete([this, stamp](const std::string& local, const WindowsPath& shown) {
            if (!shown.rest.ends_with(".mp3")) return false;
            std::filesystem::create_directories(folder_ / "host/Removed");
            std::filesystem::rename(
                local,
                folder_ / ("host/Removed/" + stamp + shown.rest.substr(shown.rest.rfind('/') + 1)));
            return true;
        });
    }

    void Run() {
        PortableFiles real(resolver_, [](LogKind, const std::string&) {});
        KeepDeleted(real, "1");
        RecordList list;
        JournalledFiles files(real, list, Keep("1"));
        const auto write = [&](const char* path, const char* text) {
            const auto writer = files.CreateText(path);
            writer->Write(text);
            writer->Close();
        };
        const std::string old = "OLDTAG", tag = "NEWTAG";
        const auto bytes = [](const std::string& text) {
            return std::vector<std::uint8_t>(text.begin(), text.end());
        };
        const auto seenOf = [&](const char* path, std::uint64_t position, std::size_t count) {
            const auto reader = files.OpenBinary(path);
            reader->SetPosition(position);
            return reader->Read(count);
        };
        files.MoveFile(R"(D:\Music\b.mp3)", R"(D:\Music\t.mp3)");
        files.MoveFile(R"(D:\Music\c.mp3)", R"(D:\Music\b.mp3)");
        files.MoveFile(R"(D:\Music\t.mp3)", R"(D:\Music\c.mp3)");
        files.MoveFile(R"(D:\Music\a.mp3)", R"(D:\Music\a2.mp3)");
        files.MoveFile(R"(D:\Music\a2.mp3)", R"(D:\Music\a3.mp3)");
        files.MoveFile(R"(D:\Music\lower.mp3)", R"(D:\Music\Lower.mp3)");
        files.WriteEnd(R"(D:\Music\tag.mp3)", {.size = 12, .bytes = bytes(old)}, 6, bytes(tag));
        files.WriteEnd(R"(D:\Music\none.mp3)", {.size = 5, .bytes = {}}, 5, bytes(tag));
        files.ReplaceBytes(
            R"(D:\Music\tag.mp3)",
            {.size = 12, .position = 1, .bytes = seenOf(R"(D:\Music\tag.mp3)", 1, 3)},
            bytes("longer than before"));
        files.ReplaceBytes(
            R"(D:\Music\none.mp3)",
            {.size = 11, .position = 0, .bytes = seenOf(R"(D:\Music\none.mp3)", 0, 2)},
            bytes("as"));
        files.MoveFile(R"(D:\Music\none.mp3)", R"(D:\Music\some.mp3)");
        files.DeleteFile(R"(D:\Music\twin.mp3)");
        files.CreateFolder(R"(D:\Music\Artist)");
        files.CopyFile(R"(D:\Source\new.mp3)", R"(D:\Music\Artist\new.mp3)", false);
        files.CopyFile(R"(D:\Source\new.jpg)", R"(D:\Covers\c.jpg)", true);
        files.CopyFile(R"(D:\Source\new.jpg)", R"(D:\Covers\d.jpg)", false);
        write(R"(D:\Lists\Rock.pla)", "repaired");
        write(R"(D:\Lists\New.pla)", "made");
        files.DeleteFile(R"(D:\Lists\Old.pla)");
        files.CreateFolder(R"(D:\host\HTML\Picker.new)");
        write(R"(D:\host\HTML\Picker.new\index.asp)", "new page");
        files.MoveFolder(R"(D:\host\HTML\Picker)", R"(D:\host\HTML\Picker.old)");
        files.MoveFolder(R"(D:\host\HTML\Picker.new)", R"(D:\host\HTML\Picker)");
        files.DeleteFolder(R"(D:\host\HTML\Picker.old)");
        files.CreateFolder(R"(D:\Music\Nothing)");
        files.Discard(R"(D:\Music\Nothing)");
        targets = {{.stamp = "1", .records = list.records, .isWhole = true}};
    }

    Outcomes TakeBack(Files& ground, RecordList& sink, const std::string& stamp) {
        if (auto* const real = dynamic_cast<PortableFiles*>(&ground)) KeepDeleted(*real, stamp);
        std::vector<FileStep> steps = FileStepsFor(targets, TakenBack(undos));
        const Attempt attempt = [](const std::function<void()>& work) -> std::string {
            try {
                work();
                return "";
            } catch (const Failure& failure) {
                return failure.what();
            }
        };
        CarryOutAnnounced(steps,
                          {.files = ground,
                           .clock = clock_,
                           .journal = sink,
                           .keeping = Keep(stamp),
                           .hostFolder = R"(D:\host)"},
                          attempt,
                          {.isHeld = [&](const std::string& path) { return held.contains(path); }});
        Outcomes refused;
        for (const FileStep& step : steps)
            if (step.outcome.state == Outcome::State::Refused)
                refused.push_back(step.outcome.reason);
        return refused;
    }

    outside::TemporaryFolder folder_;
    PathResolver resolver_;
    SystemClock clock_;
};

}  // namespace quillon
