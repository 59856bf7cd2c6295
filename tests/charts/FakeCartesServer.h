#pragma once
// Cartes du Ciel's TCP command server played in this process: the greeting, then the replies
// of an answer function for every CR LF line received, the lines kept for the test.

#include "charts/Planetarium.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fakecdc {

inline int Listen(int& port)
{
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int one = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a), 0);
    EXPECT_EQ(::listen(fd, 8), 0);
    socklen_t length = sizeof a;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &length);
    port = ntohs(a.sin_port);
    return fd;
}

inline void SendText(int fd, const std::string& text)
{
    ::send(fd, text.data(), text.size(), MSG_NOSIGNAL);
}

// A port on which nothing listens.
inline int ClosedPort()
{
    int port = 0;
    ::close(Listen(port));
    return port;
}

// Plays one connection of the command server: the greeting, then for every line the replies
// that answer(line) gives (each sent with CR LF), recording the lines as received.
class FakeCartesServer
{
public:
    FakeCartesServer(std::string greeting,
                     std::function<std::vector<std::string>(const std::string&)> answer)
        : listener_(Listen(port_))
    {
        thread_ = std::thread([this, greeting = std::move(greeting), answer = std::move(answer)] {
            int fd = ::accept(listener_, nullptr, nullptr);
            if (fd < 0)
                return;
            SendText(fd, greeting + "\r\n");
            std::string buffer;
            char chunk[4096];
            for (;;) {
                ssize_t n = ::recv(fd, chunk, sizeof chunk, 0);
                if (n <= 0)
                    break;
                buffer.append(chunk, static_cast<std::size_t>(n));
                std::size_t end;
                while ((end = buffer.find("\r\n")) != std::string::npos) {
                    std::string line = buffer.substr(0, end);
                    buffer.erase(0, end + 2);
                    {
                        std::lock_guard lock(mutex_);
                        lines_.push_back(line);
                    }
                    for (const std::string& reply : answer(line))
                        SendText(fd, reply + "\r\n");
                    if (line == "QUIT")
                        break;
                }
            }
            ::close(fd);
        });
    }
    ~FakeCartesServer()
    {
        ::shutdown(listener_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }
    charts::PlanetariumAddress Address() const
    {
        return {charts::PlanetariumKind::CartesDuCiel, "127.0.0.1", port_};
    }
    std::vector<std::string> Lines()
    {
        thread_.join();
        thread_ = std::thread([] {});
        std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    int port_ = 0;
    int listener_;
    std::thread thread_;
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

inline std::vector<std::string> AllOk(const std::string& line)
{
    return {line == "QUIT" ? "Bye!" : "OK!"};
}

} // namespace fakecdc
