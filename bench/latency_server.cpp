// kelpa-latency-server: the reaction time a player meets, from the server's
// side. Listens on 127.0.0.1, starts the client program given after "--"
// with the port as its last argument, and sends probe lines ("PROBE n"),
// one at a time. The client answers each with a line holding "pong"; the
// time from the probe's send to the answer's arrival is recorded, first
// with the connection quiet, then with each probe behind a burst of flood
// lines sent in the same write. Prints the figures in milliseconds and
// closes the connection, which ends the client.
//
// With --samples FILE every time is also written there, one "quiet NS" or
// "flood NS" a line, so that runs can be pooled.
//
//   kelpa-latency-server [--probes N] [--warmup N] [--flood-lines N] [--samples FILE] -- CLIENT [ARGS...]
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

long long nowNs() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000000000LL + ts.tv_nsec;
}

void sleepMs(int ms) {
    timespec ts{ms / 1000, (ms % 1000) * 1000000L};
    nanosleep(&ts, nullptr);
}

bool sendAll(int fd, const std::string& s) {
    std::size_t done = 0;
    while (done < s.size()) {
        const ssize_t n = send(fd, s.data() + done, s.size() - done, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            pollfd p{fd, POLLOUT, 0};
            poll(&p, 1, 1000);
            continue;
        }
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

// Counts the answers in whatever the client sends; an answer cut between
// two reads is still counted once.
class AnswerCounter {
public:
    // Reads until one more answer has come or the deadline passes; the
    // moment of the read that completed it, or -1.
    long long waitOne(int fd, long long deadlineNs) {
        while (true) {
            if (pending_ > 0) {
                --pending_;
                return lastRead_;
            }
            const long long left = deadlineNs - nowNs();
            if (left <= 0) return -1;
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, static_cast<int>(left / 1000000 + 1)) <= 0) continue;
            char buf[65536];
            const ssize_t n = recv(fd, buf, sizeof buf, 0);
            if (n <= 0) return -1;
            lastRead_ = nowNs();
            for (ssize_t i = 0; i < n; ++i) {
                const char c = buf[i];
                matched_ = c == kWord[matched_] ? matched_ + 1 : (c == kWord[0] ? 1 : 0);
                if (matched_ == sizeof kWord - 1) {
                    ++pending_;
                    matched_ = 0;
                }
            }
        }
    }

private:
    static constexpr char kWord[] = "pong";
    std::size_t matched_ = 0;
    int pending_ = 0;
    long long lastRead_ = 0;
};

// Coloured lines of words with no probe in them, about 80 bytes each.
std::string floodLines(int count, unsigned& seed) {
    static const char* const words[] = {"the",  "dragon", "sword", "gleams", "north", "you",    "see", "a",
                                        "dark", "forest", "path",  "winds",  "guard", "shouts", "gold", "coins"};
    std::string s;
    for (int i = 0; i < count; ++i) {
        seed = seed * 1103515245u + 12345u;
        s += "\x1b[1;3" + std::to_string(1 + (seed >> 16) % 7) + "m";
        for (int w = 0; w < 12; ++w) {
            seed = seed * 1103515245u + 12345u;
            s += words[(seed >> 16) % 16];
            s += ' ';
        }
        s += "\x1b[0m\r\n";
    }
    return s;
}

struct Figures {
    std::vector<long long> ns;
    int lost = 0;
};

void report(const char* name, Figures f) {
    std::sort(f.ns.begin(), f.ns.end());
    auto at = [&](double q) {
        return f.ns.empty() ? 0.0 : f.ns[std::min(f.ns.size() - 1, static_cast<std::size_t>(q * f.ns.size()))] / 1e6;
    };
    std::printf("%s_p50_ms=%.3f\n%s_p99_ms=%.3f\n%s_max_ms=%.3f\n%s_lost=%d\n", name, at(0.5), name, at(0.99), name,
                f.ns.empty() ? 0.0 : f.ns.back() / 1e6, name, f.lost);
}

}  // namespace

int main(int argc, char** argv) {
    int probes = 200, warmup = 20, floodCount = 50;
    const char* samples = nullptr;
    int i = 1;
    for (; i < argc && std::strcmp(argv[i], "--") != 0; ++i) {
        if (i + 1 >= argc) break;
        if (!std::strcmp(argv[i], "--probes")) probes = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--warmup")) warmup = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--flood-lines")) floodCount = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--samples")) samples = argv[++i];
    }
    if (i + 1 >= argc) {
        std::fprintf(stderr, "usage: %s [--probes N] [--warmup N] [--flood-lines N] [--samples FILE] -- CLIENT [ARGS...]\n",
                     argv[0]);
        return 2;
    }
    char** client = argv + i + 1;
    const int clientArgs = argc - i - 1;

    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = 0;
    socklen_t len = sizeof addr;
    if (bind(listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || listen(listener, 1) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&addr), &len) != 0) {
        std::perror("listen");
        return 1;
    }
    const std::string port = std::to_string(ntohs(addr.sin_port));

    const pid_t child = fork();
    if (child == 0) {
        close(listener);
        std::vector<char*> args(client, client + clientArgs);
        args.push_back(const_cast<char*>(port.c_str()));
        args.push_back(nullptr);
        execvp(args[0], args.data());
        std::perror("exec");
        _exit(127);
    }
    pollfd pl{listener, POLLIN, 0};
    if (poll(&pl, 1, 30000) <= 0) {
        std::fprintf(stderr, "the client did not connect\n");
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
        return 1;
    }
    const int fd = accept(listener, nullptr, nullptr);
    close(listener);
    // The server's own sends are never held back.
    const int one = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    sendAll(fd, "Welcome to the latency test.\r\n");
    sleepMs(300);

    AnswerCounter answers;
    unsigned seed = 12345;
    int sent = 0;
    // One probe: its send, the answer, then a pause of 3 to 20 ms so that
    // probes meet the client at every point of its repaint cycle.
    auto probe = [&](Figures* into, int flood) {
        std::string out = flood > 0 ? floodLines(flood, seed) : std::string();
        out += "PROBE " + std::to_string(++sent) + "\r\n";
        const long long t0 = nowNs();
        long long t1 = -1;
        if (sendAll(fd, out)) t1 = answers.waitOne(fd, t0 + 1000000000LL);
        if (into && t1 >= 0) into->ns.push_back(t1 - t0);
        if (into && t1 < 0) ++into->lost;
        seed = seed * 1103515245u + 12345u;
        sleepMs(3 + static_cast<int>((seed >> 16) % 18));
        return t1 >= 0;
    };
    Figures quiet, flood;
    for (int k = 0; k < warmup; ++k) probe(nullptr, k % 2 ? floodCount : 0);
    for (int k = 0; k < probes; ++k) probe(&quiet, 0);
    for (int k = 0; k < probes; ++k) probe(&flood, floodCount);
    shutdown(fd, SHUT_WR);
    // Whatever the client still sends is read until it closes.
    char buf[4096];
    const long long end = nowNs() + 5000000000LL;
    while (nowNs() < end) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, 100) > 0 && recv(fd, buf, sizeof buf, 0) <= 0) break;
    }
    close(fd);

    if (samples) {
        if (FILE* f = std::fopen(samples, "a")) {
            for (long long ns : quiet.ns) std::fprintf(f, "quiet %lld\n", ns);
            for (long long ns : flood.ns) std::fprintf(f, "flood %lld\n", ns);
            std::fclose(f);
        }
    }
    std::printf("probes=%d\nflood_lines=%d\n", probes, floodCount);
    report("quiet", quiet);
    report("flood", flood);
    std::fflush(stdout);
    int status = 0;
    for (int k = 0; k < 100 && waitpid(child, &status, WNOHANG) == 0; ++k) sleepMs(50);
    if (waitpid(child, &status, WNOHANG) == 0) {
        kill(child, SIGTERM);
        waitpid(child, &status, 0);
    }
    return quiet.lost + flood.lost == 0 ? 0 : 3;
}
