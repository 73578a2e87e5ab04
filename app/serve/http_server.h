#pragma once

#include <functional>
#include <memory>

#include "app/serve/preview.h"

namespace quillon {

/// Answers requests on the loopback address 127.0.0.1, which other computers cannot reach, from
/// when it is made until it is destroyed. Each connection carries one request.
class HttpServer {
  public:
    /// Called from several threads at a time.
    using Handler = std::function<WebResponse(const WebRequest&)>;

    /// Port 0 takes any free one. std::runtime_error when the port cannot be had.
    HttpServer(Handler handler, int port);
    /// Waits for the answers under way.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    int Port() const;

    /// False once it has stopped by itself because the system took the port away.
    bool IsRunning() const;

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace quillon
