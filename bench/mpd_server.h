#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "bench/child_process.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {

/// A music server with an empty database of its own, heard by this machine alone: what another
/// program takes to know the same files.
class MpdServer {
  public:
    MpdServer(const std::string& program, const std::filesystem::path& music);
    MpdServer(const MpdServer&) = delete;
    MpdServer& operator=(const MpdServer&) = delete;
    ~MpdServer();

    /// Lets it look through all its music. Returns the processor time that it took for that. Throws
    /// when it knows more or fewer songs afterwards.
    double SecondsOfUpdate(std::size_t songs);

  private:
    void Connect(unsigned short port);
    void Greet();
    std::string Ask(const std::string& command);
    std::string ReadLine();

    outside::TemporaryFolder folder_;
    std::optional<Companion> process_;
    int socket_ = -1;
    std::string pending_;
};

}  // namespace quillon::bench
