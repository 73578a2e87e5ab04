#include "bench/mpd_server.h"

#include <array>
#include <chrono>
#include <fmt/format.h>
#include <fstream>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace quillon::bench {
namespace {

sockaddr_in Loopback(unsigned short port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

const sockaddr* AsAddress(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

int NewSocket() {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) throw std::runtime_error("no socket can be made");
    return descriptor;
}

/// A port that nobody listens on.
unsigned short FreePort() {
    const int listener = NewSocket();
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    const bool known = bind(listener, AsAddress(address), size) == 0 &&
                       getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(listener);
    if (!known) throw std::runtime_error("no port is free");
    return ntohs(address.sin_port);
}

void WriteConfiguration(const std::filesystem::path& folder, const std::filesystem::path& music,
                        unsigned short port) {
    std::ofstream(folder / "mpd.conf") << fmt::format(
        "music_directory \"{}\"\ndb_file \"{}\"\nlog_file \"{}\"\n"
        "bind_to_address \"127.0.0.1\"\nport \"{}\"\n"
        "auto_update \"no\"\nzeroconf_enabled \"no\"\n"
        "audio_output {{\n    type \"null\"\n    name \"none\"\n}}\n",
        music.string(), (folder / "database").string(), (folder / "log").string(), port);
}

}  // namespace

MpdServer::MpdServer(const std::string& program, const std::filesystem::path& music) {
    const unsigned short port = FreePort();
    WriteConfiguration(folder_.Path(), music, port);
    process_.emplace(
        std::vector<std::string>{program, "--no-daemon", (folder_.Path() / "mpd.conf").string()});
    Connect(port);
}

MpdServer::~MpdServer() {
    if (socket_ >= 0) close(socket_);
}

void MpdServer::Connect(unsigned short port) {
    constexpr int Trials = 200;
    constexpr std::chrono::milliseconds Pause{50};
    const sockaddr_in address = Loopback(port);
    for (int trial = 0; trial < Trials; ++trial) {
        socket_ = NewSocket();
        if (connect(socket_, AsAddress(address), sizeof address) == 0) return Greet();
        close(socket_);
        socket_ = -1;
        std::this_thread::sleep_for(Pause);
    }
    throw std::runtime_error("mpd does not answer");
}

void MpdServer::Greet() {
    if (!ReadLine().starts_with("OK MPD")) throw std::runtime_error("this is not mpd");
}

std::string MpdServer::ReadLine() {
    std::size_t end = 0;
    while ((end = pending_.find('\n')) == std::string::npos) {
        std::array<char, 4096> buffer{};
        const ssize_t count = read(socket_, buffer.data(), buffer.size());
        if (count <= 0) throw std::runtime_error("mpd has hung up");
        pending_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    std::string line = pending_.substr(0, end);
    pending_.erase(0, end + 1);
    return line;
}

std::string MpdServer::Ask(const std::string& command) {
    const std::string line = command + '\n';
    if (send(socket_, line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size()))
        throw std::runtime_error("mpd has hung up");
    std::string answer;
    for (;;) {
        const std::string part = ReadLine();
        if (part == "OK") return answer;
        if (part.starts_with("ACK")) throw std::runtime_error("mpd says " + part);
        answer += part + '\n';
    }
}

double MpdServer::SecondsOfUpdate(std::size_t songs) {
    const double before = process_->Processor();
    Ask("update");
    while (Ask("status").find("updating_db:") != std::string::npos)
        Ask("idle update");
    const double seconds = process_->Processor() - before;
    const std::string known = Ask("stats");
    if (known.find(fmt::format("songs: {}\n", songs)) == std::string::npos)
        throw std::runtime_error("mpd has not found all songs: " + known);
    return seconds;
}

}  // namespace quillon::bench
