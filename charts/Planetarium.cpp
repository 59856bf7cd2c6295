#include "charts/Planetarium.h"

#include "astro/Position.h"
#include "services/HttpClient.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace charts {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int kCartesPort = 3292;
constexpr int kStellariumPort = 8090;
// Objects in one script of Stellarium: its HTTP server takes bodies of limited size.
constexpr std::size_t kObjectsPerScript = 500;
constexpr double kPi = 3.14159265358979323846;

std::string Printf(const char* format, double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

// A number without trailing zeros: "41.88", "0", "-87.63".
std::string Plain(double value, int decimals = 6)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    std::string text = buffer;
    if (text.find('.') != std::string::npos) {
        while (text.back() == '0')
            text.pop_back();
        if (text.back() == '.')
            text.pop_back();
    }
    if (text == "-0")
        text = "0";
    return text;
}

int WholeField(double field)
{
    if (!std::isfinite(field))
        return 35;
    return static_cast<int>(std::lround(std::clamp(field, 1.0, 180.0)));
}

// Hours added to Universal Time to give the site's civil time.
double ZoneOffsetHours(const PlanetariumSite& site)
{
    return -site.PTz + (site.PStd == "S" ? 0.0 : 1.0);
}

std::string Address(const PlanetariumAddress& address)
{
    bool v6 = address.host.find(':') != std::string::npos;
    return (v6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

std::string Where(const PlanetariumAddress& address)
{
    return PlanetariumName(address.kind) + " at " + Address(address);
}

std::string FixedColumns(std::string_view text, std::size_t width)
{
    std::string result(text.substr(0, width));
    result.resize(width, ' ');
    return result;
}

struct IgnoreFaults : astro::FaultSink
{
    void ReportFault(std::string_view, std::string_view) override {}
    void EndProcess(int) override {}
};

// ---- Cartes du Ciel ------------------------------------------------------------------------

class LineSession
{
public:
    LineSession(const PlanetariumAddress& address, std::chrono::milliseconds timeout)
        : address_(address), timeout_(timeout)
    {
        try {
            fd_ = services::TcpConnect({address.host, address.port}, timeout);
        } catch (const services::HttpError& error) {
            throw PlanetariumError(Where(address_) + " does not answer (" + error.what() + ").");
        }
    }
    LineSession(const LineSession&) = delete;
    LineSession& operator=(const LineSession&) = delete;
    ~LineSession() { ::close(fd_); }

    // The next reply line, without its line end; lines of clicks in the chart (">") skipped.
    std::string ReadReply(std::string_view command)
    {
        SteadyClock::time_point deadline = SteadyClock::now() + timeout_;
        for (;;) {
            std::size_t end = buffer_.find('\n');
            if (end != std::string::npos) {
                std::string line = buffer_.substr(0, end);
                buffer_.erase(0, end + 1);
                if (!line.empty() && line.back() == '\r')
                    line.pop_back();
                if (line.starts_with('>'))
                    continue;
                return line;
            }
            if (buffer_.size() > 64 * 1024)
                Fail("an endless line", command);
            auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
            pollfd p{fd_, POLLIN, 0};
            int n = ::poll(&p, 1, static_cast<int>(std::max<long long>(left.count(), 0)));
            if (n == 0)
                Fail("no answer in time", command);
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                Fail(std::strerror(errno), command);
            }
            char chunk[4096];
            ssize_t got = ::recv(fd_, chunk, sizeof chunk, 0);
            if (got < 0) {
                if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK)
                    continue;
                Fail(std::strerror(errno), command);
            }
            if (got == 0)
                Fail("the connection closed", command);
            buffer_.append(chunk, static_cast<std::size_t>(got));
        }
    }

    void Write(const std::string& command)
    {
        std::string line = command + "\r\n";
        std::string_view rest = line;
        SteadyClock::time_point deadline = SteadyClock::now() + timeout_;
        while (!rest.empty()) {
            auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
            pollfd p{fd_, POLLOUT, 0};
            if (::poll(&p, 1, static_cast<int>(std::max<long long>(left.count(), 0))) == 0)
                Fail("no room to send in time", command);
            ssize_t n = ::send(fd_, rest.data(), rest.size(), MSG_NOSIGNAL);
            if (n < 0) {
                if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK)
                    continue;
                Fail(std::strerror(errno), command);
            }
            rest.remove_prefix(static_cast<std::size_t>(n));
        }
    }

    // Sends a command and returns its reply.
    std::string Ask(const std::string& command)
    {
        Write(command);
        return ReadReply(command);
    }

    // Sends a command that must be answered "OK!".
    void Expect(const std::string& command)
    {
        std::string reply = Ask(command);
        if (!reply.starts_with("OK!"))
            Refused(reply, command);
    }

    [[noreturn]] void Refused(const std::string& reply, std::string_view command) const
    {
        std::string text = Where(address_) + " answered \"" + reply + "\"";
        if (!command.empty())
            text += " to \"" + std::string(command) + "\"";
        throw PlanetariumError(text + ".");
    }

private:
    [[noreturn]] void Fail(const std::string& what, std::string_view command) const
    {
        std::string text = Where(address_) + ": " + what;
        if (!command.empty())
            text += " after \"" + std::string(command) + "\"";
        throw PlanetariumError(text + ".");
    }

    PlanetariumAddress address_;
    std::chrono::milliseconds timeout_;
    int fd_ = -1;
    std::string buffer_;
};

class CartesDuCiel : public Planetarium
{
public:
    CartesDuCiel(PlanetariumAddress address, std::filesystem::path listFile,
                 std::chrono::milliseconds timeout)
        : address_(std::move(address)), listFile_(std::move(listFile)), timeout_(timeout)
    {
    }

protected:
    void Send(const PlanetariumChart& chart) override
    {
        LineSession session(address_, timeout_);
        std::string greeting = session.ReadReply("");
        if (!greeting.starts_with("OK!"))
            session.Refused(greeting, "");

        // A server from before the equinox command draws in the equinox of the chart's date.
        bool j2000 = session.Ask("SETCHARTEQUINOX J2000").starts_with("OK!");
        double T1 = (JulianDayUT(chart.moment, chart.site) - 2451545.0) / 36525.0;
        auto position = [&](double raHours, double decDegrees) {
            if (j2000)
                return std::pair{raHours, decDegrees};
            IgnoreFaults faults;
            astro::RaDecRadians p =
                astro::PrecessFK5(0, T1, raHours * kPi / 12, decDegrees * kPi / 180, faults);
            return std::pair{p.alpha * 12 / kPi, p.delta * 180 / kPi};
        };

        char date[48];
        std::snprintf(date, sizeof date, "%04d-%02d-%02dT%02d:%02d:00", chart.moment.year,
                      chart.moment.month, chart.moment.day, chart.moment.hour, chart.moment.minute);
        auto [ra, dec] = position(chart.raHours, chart.decDegrees);

        session.Expect("SETOBS " + CdcObservatory(chart.site));
        session.Expect("SETTZ " + CdcTimeZone(chart.site));
        session.Expect(std::string("SETDATE ") + date);
        session.Expect("SETRA " + Printf("%.6f", ra));
        session.Expect("SETDEC " + Printf("%.6f", dec));
        session.Expect("SETFOV " + std::to_string(WholeField(chart.field)));
        if (!chart.objects.empty()) {
            WriteList(chart, position);
            std::string file = std::filesystem::absolute(listFile_).string();
            if (file.find(' ') != std::string::npos)
                file = "\"" + file + "\"";
            session.Expect("OBSLISTLOAD " + file);
        }
        session.Expect("REDRAW");
        try {
            session.Ask("QUIT"); // "Bye!", or the connection closes
        } catch (const PlanetariumError&) {
        }
    }

private:
    template <typename Position>
    void WriteList(const PlanetariumChart& chart, Position position) const
    {
        std::ofstream out(listFile_, std::ios::binary | std::ios::trunc);
        out << chart.heading << "\r\n";
        for (const PlanetariumObject& object : chart.objects) {
            auto [ra, dec] = position(object.raHours, object.decDegrees);
            out << FixedColumns(object.ObjectID, 32) << Printf("%10.5f", ra * 15)
                << Printf("%10.5f", dec)
                << FixedColumns(object.label.empty() ? object.ObjectID : object.label, 32)
                << "\r\n";
        }
        out.close();
        if (!out)
            throw PlanetariumError("The object list for " + PlanetariumName(address_.kind) +
                                   " could not be written to " + listFile_.string() + ".");
    }

    PlanetariumAddress address_;
    std::filesystem::path listFile_;
    std::chrono::milliseconds timeout_;
};

// ---- Stellarium ----------------------------------------------------------------------------

std::string FormEncode(std::string_view text)
{
    static const char hex[] = "0123456789ABCDEF";
    std::string result;
    for (unsigned char c : text) {
        if (std::isalnum(c) || c == '-' || c == '.' || c == '_' || c == '~') {
            result += static_cast<char>(c);
        } else if (c == ' ') {
            result += '+';
        } else {
            result += '%';
            result += hex[c >> 4];
            result += hex[c & 15];
        }
    }
    return result;
}

std::string Form(std::initializer_list<std::pair<std::string_view, std::string>> fields)
{
    std::string body;
    for (const auto& [name, value] : fields) {
        if (!body.empty())
            body += '&';
        body.append(name).append("=").append(FormEncode(value));
    }
    return body;
}

std::string ScriptString(std::string_view text)
{
    std::string result = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (c == '\n' || c == '\r')
            c = ' ';
        result += c;
    }
    return result + "\"";
}

class Stellarium : public Planetarium
{
public:
    Stellarium(PlanetariumAddress address, std::chrono::milliseconds timeout)
        : address_(std::move(address)), timeout_(timeout)
    {
    }

protected:
    void Send(const PlanetariumChart& chart) override
    {
        const PlanetariumSite& site = chart.site;
        Post("/api/location/setlocationfields", Form({{"latitude", Plain(site.Plat)},
                                                      {"longitude", Plain(-site.Plon)},
                                                      {"altitude", "0"},
                                                      {"name", site.name},
                                                      {"planet", "Earth"}}));
        Post("/api/main/time", Form({{"time", Plain(JulianDayUT(chart.moment, site))}}));
        double alpha = chart.raHours * kPi / 12;
        double delta = chart.decDegrees * kPi / 180;
        std::string vector = "[" + Printf("%.6f", std::cos(delta) * std::cos(alpha)) + "," +
                             Printf("%.6f", std::cos(delta) * std::sin(alpha)) + "," +
                             Printf("%.6f", std::sin(delta)) + "]";
        Post("/api/main/view", Form({{"j2000", vector}}));
        Post("/api/main/fov", Form({{"fov", std::to_string(WholeField(chart.field))}}));

        std::string code = "LabelMgr.deleteAllLabels();MarkerMgr.deleteAllMarkers();";
        std::size_t inScript = 0;
        for (const PlanetariumObject& object : chart.objects) {
            if (inScript == kObjectsPerScript) {
                Post("/api/scripts/direct", Form({{"code", code}}));
                code.clear();
                inScript = 0;
            }
            std::string ra = ScriptString(StellariumRa(object.raHours));
            std::string dec = ScriptString(StellariumDec(object.decDegrees));
            std::string label = ScriptString(object.label.empty() ? object.ObjectID : object.label);
            code += "MarkerMgr.markerEquatorial(" + ra + "," + dec +
                    ",true,true,\"circle\",\"#ff0000\",12);";
            code += "LabelMgr.labelEquatorial(" + label + "," + ra + "," + dec +
                    ",true,14,\"#ff0000\");";
            ++inScript;
        }
        Post("/api/scripts/direct", Form({{"code", code}}));
    }

private:
    void Post(std::string_view target, const std::string& form) const
    {
        services::HttpAnswer answer;
        try {
            answer = services::HttpExchange({address_.host, address_.port}, "POST", target, form,
                                            timeout_);
        } catch (const services::HttpError& error) {
            throw PlanetariumError(Where(address_) + " does not answer (" + error.what() + ") to " +
                                   std::string(target) + ".");
        }
        std::string body = answer.body;
        while (!body.empty() && std::isspace(static_cast<unsigned char>(body.back())))
            body.pop_back();
        if (answer.status != 200 || body != "ok") {
            std::string reply =
                answer.status == 200 ? body : "HTTP " + std::to_string(answer.status) + " " + body;
            throw PlanetariumError(Where(address_) + " answered \"" + reply + "\" to " +
                                   std::string(target) + ".");
        }
    }

    PlanetariumAddress address_;
    std::chrono::milliseconds timeout_;
};

bool IsProgram(const std::filesystem::path& file)
{
    std::error_code ec;
    return std::filesystem::is_regular_file(file, ec) && ::access(file.c_str(), X_OK) == 0;
}

} // namespace

std::optional<PlanetariumAddress> ParsePlanetarium(std::string_view setting)
{
    while (!setting.empty() && std::isspace(static_cast<unsigned char>(setting.front())))
        setting.remove_prefix(1);
    while (!setting.empty() && std::isspace(static_cast<unsigned char>(setting.back())))
        setting.remove_suffix(1);
    if (setting.empty())
        return PlanetariumAddress{};

    PlanetariumAddress address;
    std::size_t scheme = setting.find("://");
    if (scheme == std::string_view::npos)
        return std::nullopt;
    std::string name(setting.substr(0, scheme));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (name == "cdc") {
        address.kind = PlanetariumKind::CartesDuCiel;
        address.port = kCartesPort;
    } else if (name == "stellarium") {
        address.kind = PlanetariumKind::Stellarium;
        address.port = kStellariumPort;
    } else {
        return std::nullopt;
    }
    std::string_view rest = setting.substr(scheme + 3);
    if (!rest.empty() && rest.back() == '/')
        rest.remove_suffix(1);
    if (std::optional<services::HostPort> hostPort = services::ParseHostPort(rest)) {
        address.host = hostPort->host;
        address.port = hostPort->port;
        return address;
    }
    // A host alone, without a port.
    std::string_view host = rest;
    if (host.starts_with('[') && host.ends_with(']'))
        host = host.substr(1, host.size() - 2);
    else if (host.find(':') != std::string_view::npos)
        return std::nullopt;
    if (host.empty() || host.find_first_of("/ \t?#@[]") != std::string_view::npos)
        return std::nullopt;
    address.host = std::string(host);
    return address;
}

std::string PlanetariumUrl(const PlanetariumAddress& address)
{
    return (address.kind == PlanetariumKind::CartesDuCiel ? "cdc://" : "stellarium://") +
           Address(address);
}

std::string PlanetariumName(PlanetariumKind kind)
{
    return kind == PlanetariumKind::CartesDuCiel ? "Cartes du Ciel" : "Stellarium";
}

std::filesystem::path FindPlanetariumProgram(PlanetariumKind kind, std::string_view cartesPath,
                                             std::string_view path)
{
    const char* name = kind == PlanetariumKind::CartesDuCiel ? "skychart" : "stellarium";
    if (!cartesPath.empty()) {
        std::filesystem::path given(cartesPath);
        if (IsProgram(given))
            return given;
        if (IsProgram(given / name))
            return given / name;
    }
    while (!path.empty()) {
        std::size_t colon = path.find(':');
        std::string_view folder = path.substr(0, colon);
        path = colon == std::string_view::npos ? std::string_view() : path.substr(colon + 1);
        if (folder.empty())
            continue;
        std::filesystem::path candidate = std::filesystem::path(folder) / name;
        if (IsProgram(candidate))
            return candidate;
    }
    return {};
}

void Planetarium::CDC_SetDate(const astro::LocalDateTime& moment)
{
    chart_.moment = moment;
    chart_.moment.second = 0;
}

void Planetarium::CDC_DrawChart(double raHours, double decDegrees, double field,
                                std::string heading)
{
    chart_.raHours = raHours;
    chart_.decDegrees = decDegrees;
    chart_.field = field;
    chart_.heading = std::move(heading);
    chart_.constellation.clear();
    chart_.objects.clear();
}

void Planetarium::CDC_CenterOnConst(std::string_view constellation, double raHours,
                                    double decDegrees, double field, std::string heading)
{
    CDC_DrawChart(raHours, decDegrees, field, std::move(heading));
    chart_.constellation = std::string(constellation.substr(0, 3));
}

void Planetarium::CDC_PlotDSO(PlanetariumObject object)
{
    chart_.objects.push_back(std::move(object));
}

std::unique_ptr<Planetarium> MakeCartesDuCiel(const PlanetariumAddress& address,
                                              std::filesystem::path listFile,
                                              std::chrono::milliseconds timeout)
{
    return std::make_unique<CartesDuCiel>(address, std::move(listFile), timeout);
}

std::unique_ptr<Planetarium> MakeStellarium(const PlanetariumAddress& address,
                                            std::chrono::milliseconds timeout)
{
    return std::make_unique<Stellarium>(address, timeout);
}

std::unique_ptr<Planetarium> MakePlanetarium(const PlanetariumAddress& address,
                                             std::filesystem::path listFile,
                                             std::chrono::milliseconds timeout)
{
    if (address.kind == PlanetariumKind::Stellarium)
        return MakeStellarium(address, timeout);
    return MakeCartesDuCiel(address, std::move(listFile), timeout);
}

std::string CdcObservatory(const PlanetariumSite& site)
{
    auto angle = [](double degrees, int width) {
        long long seconds = std::llround(std::fabs(degrees) * 3600);
        char text[40];
        std::snprintf(text, sizeof text, "%c%0*lldd%02lldm%02llds", degrees < 0 ? '-' : '+', width,
                      seconds / 3600, seconds / 60 % 60, seconds % 60);
        return std::string(text);
    };
    return "LAT:" + angle(site.Plat, 2) + "LON:" + angle(site.Plon, 3) + "ALT:0mOBS:" + site.name;
}

std::string CdcTimeZone(const PlanetariumSite& site)
{
    double offset = ZoneOffsetHours(site);
    long long minutes = std::llround(std::fabs(offset) * 60);
    std::string text =
        std::string("UTC") + (offset < 0 && minutes > 0 ? "-" : "+") + std::to_string(minutes / 60);
    if (minutes % 60 != 0) {
        char part[8];
        std::snprintf(part, sizeof part, ":%02lld", minutes % 60);
        text += part;
    }
    return text;
}

double JulianDayUT(const astro::LocalDateTime& moment, const PlanetariumSite& site)
{
    // Days from 1970-01-01 of a Gregorian date.
    long long y = moment.year - (moment.month <= 2 ? 1 : 0);
    long long era = (y >= 0 ? y : y - 399) / 400;
    long long yoe = y - era * 400;
    long long mp = (moment.month + 9) % 12;
    long long doy = (153 * mp + 2) / 5 + moment.day - 1;
    long long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    long long days = era * 146097 + doe - 719468;
    double hours =
        moment.hour + moment.minute / 60.0 + moment.second / 3600.0 - ZoneOffsetHours(site);
    return 2440587.5 + static_cast<double>(days) + hours / 24.0;
}

std::string StellariumRa(double raHours)
{
    double wrapped = std::fmod(raHours, 24.0);
    if (wrapped < 0)
        wrapped += 24.0;
    long long hundredths = std::llround(wrapped * 360000.0) % (24LL * 360000);
    char text[40];
    std::snprintf(text, sizeof text, "%lldh%02lldm%02lld.%02llds", hundredths / 360000,
                  hundredths / 6000 % 60, hundredths / 100 % 60, hundredths % 100);
    return text;
}

std::string StellariumDec(double decDegrees)
{
    long long tenths = std::llround(std::fabs(decDegrees) * 36000.0);
    char text[40];
    std::snprintf(text, sizeof text, "%s%lldd%02lldm%02lld.%llds",
                  decDegrees < 0 && tenths > 0 ? "-" : "", tenths / 36000, tenths / 600 % 60,
                  tenths / 10 % 60, tenths % 10);
    return text;
}

} // namespace charts
