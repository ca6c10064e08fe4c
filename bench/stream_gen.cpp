// kelpa-streamgen SIZE SEED OUT [--frames]: writes the stream to OUT and its
// counts to OUT.counts. SIZE takes a K or M suffix.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "stream_gen.h"

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s SIZE[K|M] SEED OUT [--frames]\n", argv[0]);
        return 2;
    }
    kelpa::bench::StreamOptions o;
    char* end = nullptr;
    o.size = std::strtoull(argv[1], &end, 10);
    if (*end == 'K' || *end == 'k') o.size <<= 10;
    if (*end == 'M' || *end == 'm') o.size <<= 20;
    o.seed = static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10));
    o.frames = argc > 4 && std::strcmp(argv[4], "--frames") == 0;
    kelpa::bench::StreamCounts counts;
    const std::string s = kelpa::bench::generateStream(o, &counts);
    std::ofstream(argv[3], std::ios::binary).write(s.data(), static_cast<std::streamsize>(s.size()));
    std::ofstream(std::string(argv[3]) + ".counts") << counts.format();
    std::fputs(counts.format().c_str(), stdout);
    return 0;
}
