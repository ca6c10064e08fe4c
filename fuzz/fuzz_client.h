// A Client on fakes for the fuzzers: socket, clock, random and host faked,
// files in memory, so that an input costs no disk.
#pragma once

#include "shell/client.h"
#include "support/fakes.h"
#include "support/memory_file_system.h"

namespace kelpa::fuzz {

struct FuzzClient {
    test::FakeSocket socket;
    test::FakeClock clock;
    test::FakeRandom random;
    test::MemoryFileSystem files;
    test::FakeHost host;
    Platform platform{socket, clock, random, files, host};
    Client c{platform};

    FuzzClient() {
        c.Form_Load();
        socket.connected = true;
        files.createDirectories("logs/fuzz");
        c.parts().log.open("fuzz");
    }
};

}  // namespace kelpa::fuzz
