#include "app/views/line_output.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

#include "app/signals.h"
#include "tests/app/pipe.h"
#include "tests/outside/temporary_folder.h"

namespace quillon {
namespace {

/// A terminal whose other end, that of the person, the test keeps.
class PseudoTerminal {
  public:
    PseudoTerminal() : person_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_EQ(grantpt(person_), 0);
        EXPECT_EQ(unlockpt(person_), 0);
        program_ = open(ptsname(person_), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(program_, 0);
    }
    ~PseudoTerminal() {
        close(program_);
        HangUp();
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    int Program() const { return program_; }
    void Stop() const { EXPECT_EQ(tcflow(program_, TCOOFF), 0); }
    void GoOn() const { EXPECT_EQ(tcflow(program_, TCOON), 0); }
    void HangUp() {
        if (person_ >= 0) close(person_);
        person_ = -1;
    }

    std::string Waiting() const {
        EXPECT_EQ(fcntl(person_, F_SETFL, O_NONBLOCK), 0);
        std::string text;
        std::array<char, 65536> buffer{};
        for (;;) {
            const ssize_t count = read(person_, buffer.data(), buffer.size());
            if (count <= 0) return text;
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    int person_;
    int program_ = -1;
};

/// Lets the process open no further file for as long as it lives.
class NoFurtherFiles {
  public:
    NoFurtherFiles() {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0);
        rlimit none = before_;
        none.rlim_cur = 0;
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    }
    ~NoFurtherFiles() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before_), 0); }
    NoFurtherFiles(const NoFurtherFiles&) = delete;
    NoFurtherFiles& operator=(const NoFurtherFiles&) = delete;

  private:
    rlimit before_{};
};

/// On a descriptor that cannot be opened again, as that of another account's pipe.
LineOutput OnWhatIsNotOpenedAnew(int descriptor) {
    const NoFurtherFiles none;
    return LineOutput(descriptor);
}

std::string Line(int number) {
    return "line " + std::to_string(number) + std::string(200, 'x');
}

/// More lines than pipe and buffer hold.
constexpr int TooMany = 10'000;

TEST(LineOutput, WritesEachLineAtOnce) {
    const Pipe pipe;
    LineOutput output(pipe.Writer());
    output.WriteLine("a");
    EXPECT_EQ(pipe.Waiting(), "a\n");
    output.WriteLine("b");
    EXPECT_EQ(pipe.Waiting(), "b\n");
}

TEST(LineOutput, NeverWaitsForAFullPipe) {
    const Pipe pipe;
    LineOutput output(pipe.Writer());
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    EXPECT_GE(pipe.Waiting().size(), std::size_t{4096});
}

TEST(LineOutput, LeavesThePipeOfOthersAsItIs) {
    const Pipe pipe;
    const int before = fcntl(pipe.Writer(), F_GETFL);
    {
        LineOutput output(pipe.Writer());
        output.WriteLine("a");
        EXPECT_EQ(fcntl(pipe.Writer(), F_GETFL), before) << "the shell shares it";
    }
    EXPECT_EQ(write(pipe.Writer(), "b\n", 2), 2) << "and it is still open";
    EXPECT_EQ(pipe.Waiting(), "a\nb\n");
}

TEST(LineOutput, SaysHowManyLinesItLeftOutAndLosesNoOtherOne) {
    const Pipe pipe;
    LineOutput output(pipe.Writer());
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    std::string all;
    constexpr int Rounds = 64;
    for (int i = 0; i < Rounds; ++i) {
        all += pipe.Waiting();
        output.WriteLine("later");
    }
    output.Finish();
    all += pipe.Waiting();

    std::size_t position = 0;
    int kept = 0;
    for (; all.compare(position, Line(kept).size(), Line(kept)) == 0; ++kept)
        position += Line(kept).size() + 1;
    const std::size_t told = all.find(
        " lines were not read in time and left out here; "
        "host.log has every record)\n");
    ASSERT_NE(told, std::string::npos) << all.substr(position, 300);
    ASSERT_EQ(all[position], '(');
    // The first of the later lines may have come before there was room.
    const int missing = std::stoi(all.substr(position + 1));
    EXPECT_GE(kept + missing, TooMany);
    EXPECT_LE(kept + missing, TooMany + Rounds);
    EXPECT_TRUE(all.ends_with("later\n"));
}

TEST(LineOutput, SaysAtTheEndThatLinesAreMissing) {
    const Pipe pipe;
    LineOutput output(pipe.Writer());
    output.WriteLine(std::string(900'000, 'x'));
    output.WriteLine(std::string(900'000, 'y'));
    std::string all;
    const std::string end =
        "x\n(1 line was not read in time and left out here; host.log has every record)\n";
    std::thread reader([&] {
        while (!all.ends_with(end) && all.size() < 1'000'000)
            all += pipe.Waiting();
    });
    output.Finish();
    reader.join();
    EXPECT_TRUE(all.ends_with(end));
}

TEST(LineOutput, GivesUpAReaderThatTakesNothingAtTheEnd) {
    const Pipe pipe;
    LineOutput output(pipe.Writer());
    for (int i = 0; i < 1000; ++i)
        output.WriteLine(Line(i));
    output.Finish();
    EXPECT_GE(pipe.Waiting().size(), std::size_t{4096});
}

TEST(LineOutput, NeverWaitsForAStoppedTerminal) {
    const PseudoTerminal terminal;
    LineOutput output(terminal.Program());
    output.WriteLine("before");
    terminal.Stop();
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    EXPECT_EQ(terminal.Waiting(), "before\r\n");
    terminal.GoOn();
    output.WriteLine("after");
    EXPECT_TRUE(terminal.Waiting().starts_with(Line(0) + "\r\n"));
}

TEST(LineOutput, NeverWaitsForATerminalThatNobodyReads) {
    const PseudoTerminal terminal;
    LineOutput output(terminal.Program());
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    EXPECT_TRUE(terminal.Waiting().starts_with(Line(0) + "\r\n"));
}

TEST(LineOutput, OutlivesATerminalThatHangsUp) {
    PseudoTerminal terminal;
    const AbortSignals signals;
    LineOutput output(terminal.Program());
    terminal.HangUp();
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    output.Finish();
}

TEST(LineOutput, NeverWaitsForASocket) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    LineOutput output(ends[0]);
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    std::array<char, 6> first{};
    EXPECT_EQ(read(ends[1], first.data(), first.size()), 6);
    EXPECT_EQ(std::string(first.data(), first.size()), "line 0");
    close(ends[0]);
    close(ends[1]);
}

TEST(LineOutput, NeverWaitsForAPipeOfAnotherAccount) {
    const Pipe pipe;
    LineOutput output = OnWhatIsNotOpenedAnew(pipe.Writer());
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    EXPECT_EQ(fcntl(pipe.Writer(), F_GETFL) & O_NONBLOCK, 0);
    const std::string all = pipe.Waiting();
    EXPECT_TRUE(all.starts_with(Line(0) + "\n" + Line(1) + "\n"));
    EXPECT_GE(all.size(), std::size_t{4096});
}

TEST(LineOutput, NeverWaitsForAStoppedTerminalOfAnotherAccount) {
    const PseudoTerminal terminal;
    LineOutput output = OnWhatIsNotOpenedAnew(terminal.Program());
    output.WriteLine("before");
    terminal.Stop();
    for (int i = 0; i < TooMany; ++i)
        output.WriteLine(Line(i));
    EXPECT_EQ(terminal.Waiting(), "before\r\n");
}

TEST(LineOutput, AppendsToAFileThatOthersWriteToo) {
    const outside::TemporaryFolder folder;
    const std::filesystem::path path = std::filesystem::path(folder.Path()) / "log";
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    LineOutput output(file);
    output.WriteLine("a");
    EXPECT_EQ(write(file, "b\n", 2), 2);
    output.WriteLine("c");
    close(file);
    std::ifstream stream(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "a\nb\nc\n");
}

}  // namespace
}  // namespace quillon
