#pragma once
// A real indiserver running Debian's indi_simulator_telescope on a free loopback port, for tests.
// Each server gets its own local socket name (-u) and its own HOME, so servers of tests running
// side by side never meet and the simulator's configuration and park files stay in a temporary
// folder. Stopping signals the server by its process id, then waits for its driver child.

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>

namespace inditest {

inline bool ServerInstalled()
{
    return !QStandardPaths::findExecutable("indiserver").isEmpty() &&
           !QStandardPaths::findExecutable("indi_simulator_telescope").isEmpty();
}

// A loopback port nobody listens on right now.
inline int FreePort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
        port = ntohs(address.sin_port);
    ::close(fd);
    return port;
}

inline bool Accepts(int port)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    const bool ok = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    ::close(fd);
    return ok;
}

// Alive and not a zombie.
inline bool Running(pid_t pid)
{
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    const auto close = text.rfind(')');
    return close != std::string::npos && close + 2 < text.size() && text[close + 2] != 'Z';
}

class IndiSimulator
{
public:
    static constexpr const char* kDevice = "Telescope Simulator";

    ~IndiSimulator() { Stop(); }

    // Starts a server on port, or on a free port when port is 0; false when none would start.
    bool Start(int port = 0)
    {
        for (int attempt = 0; attempt < 5; ++attempt) {
            port_ = port ? port : FreePort();
            process_ = std::make_unique<QProcess>();
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert("HOME", home_.path());
            process_->setProcessEnvironment(env);
            process_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            process_->setStandardOutputFile(QProcess::nullDevice());
            const QString name = QString("selvane-test-%1-%2").arg(::getpid()).arg(port_);
            process_->start("indiserver",
                            {"-p", QString::number(port_), "-u", name, "indi_simulator_telescope"});
            if (!process_->waitForStarted(5000))
                return false;
            for (int i = 0; i < 100 && process_->state() == QProcess::Running; ++i) {
                if (Accepts(port_))
                    return true;
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            }
            Stop(); // a taken port: try another
        }
        return false;
    }

    // SIGTERM to the server, then the driver child, which leaves by itself on end of file.
    void Stop()
    {
        if (!process_)
            return;
        const pid_t driver = driver_ ? driver_ : DriverPid();
        driver_ = 0;
        process_->terminate();
        process_->waitForFinished(5000);
        process_.reset();
        if (driver > 0) {
            for (int i = 0; i < 100 && Running(driver); ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            if (Running(driver))
                ::kill(driver, SIGTERM);
        }
    }

    // SIGTERM to the server only, as a crash of the server looks to its clients.
    void KillServer()
    {
        if (!process_)
            return;
        driver_ = DriverPid();
        ::kill(static_cast<pid_t>(process_->processId()), SIGTERM);
    }

    int Port() const { return port_; }
    std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }
    std::string Identifier() const { return "indi://" + Address() + "/" + kDevice; }

    // indi_getprop's answer for "Telescope Simulator.PROPERTY.ELEMENT" (ELEMENT may be * or
    // _STATE): element → text.
    std::map<std::string, std::string> Get(const std::string& propertyElement) const
    {
        QProcess get;
        get.start("indi_getprop",
                  {"-h", "127.0.0.1", "-p", QString::number(port_), "-t", "2",
                   QString::fromStdString(std::string(kDevice) + "." + propertyElement)});
        get.waitForFinished(5000);
        std::map<std::string, std::string> values;
        std::istringstream lines(get.readAllStandardOutput().toStdString());
        for (std::string line; std::getline(lines, line);) {
            const auto equals = line.find('=');
            const auto dot = line.rfind('.', equals);
            if (equals != std::string::npos && dot != std::string::npos)
                values[line.substr(dot + 1, equals - dot - 1)] = line.substr(equals + 1);
        }
        return values;
    }

    void Set(const std::string& assignment) const
    {
        QProcess set;
        set.start("indi_setprop",
                  {"-h", "127.0.0.1", "-p", QString::number(port_),
                   QString::fromStdString(std::string(kDevice) + "." + assignment)});
        set.waitForFinished(5000);
    }

private:
    pid_t DriverPid() const
    {
        const auto pid = std::to_string(process_->processId());
        std::ifstream children("/proc/" + pid + "/task/" + pid + "/children");
        pid_t child = 0;
        children >> child;
        return child;
    }

    QTemporaryDir home_;
    std::unique_ptr<QProcess> process_;
    int port_ = 0;
    pid_t driver_ = 0; // noted when the server was killed
};

} // namespace inditest
