#include "app/serve/http_server.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <httplib.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <utility>

#include "app/serve/arrivals.h"
#include "app/serve/client_stream.h"

namespace quillon {
namespace {

constexpr const char* LoopbackAddress = "127.0.0.1";
// Some threads are always left for clients that do not keep them waiting.
constexpr std::size_t Threads = 64, MostSlowClients = 48;
// Content of requests is of no use here; a little is read so that the refusal can be read too.
constexpr std::size_t MostContent = 65536;

WebRequest ToRequest(const httplib::Request& request) {
    WebRequest converted{request.method, request.target, {}};
    const auto [begin, end] = request.headers.equal_range("Host");
    std::for_each(begin, end,
                  [&](const auto& header) { converted.hosts.push_back(header.second); });
    return converted;
}

bool IsReading(const httplib::Request& request) {
    return request.method == "GET" || request.method == "HEAD";
}

/// The library sends what does not fit its headers when a part behind a file's end is asked for. A
/// server may always send the whole. The object behind the reference is the library's own and not
/// constant.
void IgnoreRanges(const httplib::Request& request) {
    const_cast<httplib::Request&>(request).ranges.clear();
}

void SendFile(const SiteFile& file, const std::string& type, httplib::Response& response) {
    const auto provide = [file](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
        std::array<std::uint8_t, 65536> buffer{};
        const auto part = std::span(buffer).first(std::min(length, buffer.size()));
        const std::size_t count = file.handle->ReadAt(offset, part);
        // Less than was announced: the file has been cut short, and so is the answer.
        return count > 0 && sink.write(reinterpret_cast<const char*>(buffer.data()), count);
    };
    response.set_content_provider(file.size, type, provide);
}

void Fill(httplib::Response& response, const WebResponse& answer) {
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers)
        response.set_header(name, value);
    if (answer.file && answer.file->size > 0) {
        SendFile(*answer.file, answer.type, response);
    } else {
        response.set_content(answer.text, answer.type);
    }
}

/// A port that somebody listens on already is an error; the library's own options would share it.
void ForbidSharing(socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

/// Accepts connections and leaves it to others to read from them.
class AcceptingServer : public httplib::Server {
  public:
    explicit AcceptingServer(std::function<void(socket_t)> accepted)
        : accepted_(std::move(accepted)) {}

    /// Answers the one request of a connection.
    void Answer(ClientStream& client) {
        bool closed = false;
        process_request(client, true, closed, nullptr);
    }

  private:
    bool process_and_close_socket(socket_t socket) override {
        accepted_(socket);
        return true;
    }

    std::function<void(socket_t)> accepted_;
};

/// Runs its task at once: a connection is only passed on.
class NoQueue : public httplib::TaskQueue {
  public:
    void enqueue(std::function<void()> fn) override { fn(); }
    void shutdown() override {}
};

/// The threads that answer; they end with this object, when they have done so.
class Workers : public httplib::ThreadPool {
  public:
    Workers() : ThreadPool(Threads) {}
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers() override { ThreadPool::shutdown(); }
};

}  // namespace

class HttpServer::Implementation {
  public:
    Implementation(Handler handler, int port) : handler_(std::move(handler)) {
        using Outcome = httplib::Server::HandlerResponse;
        server_.new_task_queue = [] { return std::make_unique<NoQueue>().release(); };
        server_.set_socket_options([this](socket_t socket) {
            ForbidSharing(socket);
            listening_ = socket;
        });
        server_.set_payload_max_length(MostContent);
        httplib::Headers headers;
        for (const auto& [name, value] : CommonHeaders())
            headers.emplace(name, value);
        server_.set_default_headers(std::move(headers));
        // Before the library's own routes, which are patterns and slow with long paths.
        server_.set_pre_routing_handler([this](const auto& request, auto& response) {
            if (!IsReading(request)) return Outcome::Unhandled;
            IgnoreRanges(request);
            Fill(response, handler_(ToRequest(request)));
            return Outcome::Handled;
        });
        server_.set_error_handler([this](const auto& request, auto& response) {
            if (!response.body.empty()) return;
            // Other methods end here once their content has been read, the rest is no HTTP.
            if (response.status == 404 || response.status == 413) {
                Fill(response, handler_(ToRequest(request)));
            } else {
                response.set_content("The request cannot be understood.", "text/plain");
            }
        });
        server_.set_exception_handler([](const auto&, auto& response, const auto&) {
            response.status = 500;
            response.set_content("The page cannot be shown.", "text/plain");
        });
        Start(port);
    }

    ~Implementation() {
        server_.stop();
        thread_.join();
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    int Port() const { return port_; }
    bool IsRunning() const { return !hasEnded_; }

  private:
    /// A client that is to be answered now.
    void Admit(Arrival arrival) {
        auto client = std::make_shared<ClientStream>(std::move(arrival), slow_);
        workers_.enqueue([this, client = std::move(client)] { server_.Answer(*client); });
    }

    void Start(int port) {
        port_ = port == 0 ? server_.bind_to_any_port(LoopbackAddress)
                          : (server_.bind_to_port(LoopbackAddress, port) ? port : -1);
        if (port_ <= 0)
            throw std::runtime_error(
                "port " + std::to_string(port) +
                " cannot be used; --port chooses another one, 0 any that is free");
        // The library lets five connections wait for being accepted. Of a crowd that comes at once
        // the system forgets the others, and a client that says nothing first never learns of it.
        listen(listening_, Arrivals::MostWaiting);
        thread_ = std::thread([this] {
            server_.listen_after_bind();
            hasEnded_ = true;
        });
        // A stop before this point would be lost.
        while (!server_.is_running() && !hasEnded_)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    Handler handler_;
    SlowClients slow_{MostSlowClients};
    AcceptingServer server_{[this](socket_t socket) { arrivals_.Take(socket); }};
    Workers workers_;
    Arrivals arrivals_{[this](Arrival arrival) { Admit(std::move(arrival)); }};
    socket_t listening_ = -1;
    int port_ = 0;
    std::atomic<bool> hasEnded_{false};
    std::thread thread_;
};

HttpServer::HttpServer(Handler handler, int port)
    : implementation_(std::make_unique<Implementation>(std::move(handler), port)) {}

HttpServer::~HttpServer() = default;

int HttpServer::Port() const {
    return implementation_->Port();
}

bool HttpServer::IsRunning() const {
    return implementation_->IsRunning();
}

}  // namespace quillon
