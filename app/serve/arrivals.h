#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace quillon {

/// A connection with what its client has said so far; whoever gets it closes the socket.
struct Arrival {
    int socket = -1;
    std::string received;
};

/// Where connections wait until the head of their request has arrived in whole. All of them
/// together take one thread, so clients that send little or nothing do not keep others waiting. A
/// client that has not sent its whole request in time is disconnected, and so is the one that has
/// waited longest when there are too many.
class Arrivals {
  public:
    /// Called on a thread of this object for each connection whose head is there, or whose client
    /// has stopped speaking, or has said more than any head has.
    using Handler = std::function<void(Arrival)>;

    explicit Arrivals(Handler handler);
    /// Closes what still waits.
    ~Arrivals();
    Arrivals(const Arrivals&) = delete;
    Arrivals& operator=(const Arrivals&) = delete;

    /// Takes over a connection; may be called from any thread.
    void Take(int socket);

    static constexpr std::size_t MostWaiting = 400;

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace quillon
