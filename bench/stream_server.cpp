// kelpa-stream-server FILE [--repeat-seconds S] [--lines-out OUT] [--rate MBPS]:
// the sending side of the end-to-end benches, in a process of its own.
// Listens on a free loopback port (printed as "PORT n"), takes one
// connection, writes FILE as fast as the socket takes it, or at MBPS
// (10^6 bytes a second) with --rate (again and again for S seconds, if
// given), then closes. Lines received meanwhile that read
// "t<n> <monotonic ns>" are written to OUT with their delay.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

long long nowNs() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000000000LL + ts.tv_nsec;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s FILE [--repeat-seconds S] [--lines-out OUT] [--rate MBPS]\n", argv[0]);
        return 2;
    }
    double repeatSeconds = 0;
    const char* linesOut = nullptr;
    double bytesPerNs = 0;  // 0: as fast as the socket takes it
    for (int i = 2; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--repeat-seconds")) repeatSeconds = std::atof(argv[i + 1]);
        if (!std::strcmp(argv[i], "--rate")) bytesPerNs = std::atof(argv[i + 1]) / 1000.0;
        if (!std::strcmp(argv[i], "--lines-out")) linesOut = argv[i + 1];
    }
    // Read in one piece: a stream of hundreds of megabytes must be ready
    // well within the bench's wait for the port, on a busy machine too.
    std::ifstream in(argv[1], std::ios::binary | std::ios::ate);
    std::string data(static_cast<std::size_t>(std::max<std::streamoff>(in.tellg(), 0)), '\0');
    in.seekg(0);
    in.read(data.data(), static_cast<std::streamsize>(data.size()));

    const int lfd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(lfd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || listen(lfd, 1) != 0) {
        std::perror("bind");
        return 1;
    }
    socklen_t len = sizeof addr;
    getsockname(lfd, reinterpret_cast<sockaddr*>(&addr), &len);
    std::printf("PORT %d\n", ntohs(addr.sin_port));
    std::fflush(stdout);
    const int fd = accept(lfd, nullptr, nullptr);
    close(lfd);
    // Non-blocking, so that a full socket never keeps a typed line unread.
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);

    const long long start = nowNs();
    std::size_t pos = 0;
    std::size_t sent = 0;
    std::string incoming;
    std::string report;
    bool more = !data.empty();
    auto take = [&](const char* buf, ssize_t n) {
        incoming.append(buf, static_cast<std::size_t>(n));
        std::size_t eol;
        while ((eol = incoming.find("\r\n")) != std::string::npos) {
            const std::string line = incoming.substr(0, eol);
            incoming.erase(0, eol + 2);
            const long long now = nowNs();
            const std::size_t at = line.find('t');
            const std::size_t sp = line.find(' ', at == std::string::npos ? 0 : at);
            if (at != std::string::npos && sp != std::string::npos) {
                const long long typed = std::atoll(line.c_str() + sp + 1);
                if (typed > 0) report += std::to_string((now - typed) / 1000) + " us " + line + "\n";
            }
        }
    };
    while (more) {
        // Paced: write what the rate allows by now, in pieces of at most
        // 16 KB, and otherwise wait a millisecond for the clock.
        std::size_t allowed = data.size() - pos;
        if (bytesPerNs > 0) {
            const double due = bytesPerNs * static_cast<double>(nowNs() - start) - static_cast<double>(sent);
            allowed = std::min(allowed, due > 0 ? std::min<std::size_t>(static_cast<std::size_t>(due), 16384) : 0);
        }
        pollfd p{fd, static_cast<short>(allowed > 0 ? POLLIN | POLLOUT : POLLIN), 0};
        if (poll(&p, 1, allowed > 0 ? 1000 : 1) < 0 && errno != EINTR) break;
        if (p.revents & POLLIN) {
            char buf[4096];
            const ssize_t n = read(fd, buf, sizeof buf);
            if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) break;
            if (n > 0) take(buf, n);
        }
        if (p.revents & POLLOUT) {
            const ssize_t n = write(fd, data.data() + pos, allowed);
            if (n < 0 && errno != EAGAIN && errno != EINTR) break;
            if (n > 0) {
                pos += static_cast<std::size_t>(n);
                sent += static_cast<std::size_t>(n);
            }
            if (pos == data.size()) {
                pos = 0;
                more = (nowNs() - start) / 1e9 < repeatSeconds;
            }
        }
        if (p.revents & (POLLERR | POLLHUP)) break;
    }
    // Half-close, then read until the client closes: closing with unread
    // input would reset the connection and drop what the client had not
    // read yet.
    shutdown(fd, SHUT_WR);
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    for (;;) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, 10000) <= 0) break;
        char buf[4096];
        const ssize_t n = read(fd, buf, sizeof buf);
        if (n <= 0) break;
        take(buf, n);
    }
    close(fd);
    if (linesOut) std::ofstream(linesOut) << report;
    std::fprintf(stderr, "sent %zu bytes in %.3f s\n", sent, (nowNs() - start) / 1e9);
    return 0;
}
