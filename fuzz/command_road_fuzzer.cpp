// The command road of the whole Client for any text: S_RunCommands on a
// connected fake socket and clock, macro files in a temporary folder, then
// the queue's ticks until it is empty.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "shell/client.h"
#include "support/fakes.h"

using namespace kelpa;

namespace {

struct World {
    test::FakePlatform fp;
    World() {
        std::filesystem::create_directories(fp.folder.path() / "macros" / "sub");
        std::ofstream(fp.folder.path() / "macros" / "go.macro") << "n\r\ne\r\n#echo hi\r\n";
        std::ofstream(fp.folder.path() / "macros" / "sub" / "deep.macro") << "@go\r\nsay $*\r\n";
        // Upper-case names are what then-parts and variables call; one calls
        // itself with its arguments shifted, one sits in an override folder.
        std::filesystem::create_directories(fp.folder.path() / "macros" / "AREA");
        std::ofstream(fp.folder.path() / "macros" / "GO.macro") << "#sv x %1\r\n#ifnotnull %2 @GO %2 %3 %1\r\n";
        std::ofstream(fp.folder.path() / "macros" / "AREA" / "GO.macro") << "#i %0 %1\r\n@go\r\n";
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World world;  // one folder for the whole run
    test::FakePlatform& fp = world.fp;
    fp.socket = test::FakeSocket();
    fp.socket.connected = true;
    fp.host = test::FakeHost();
    Client c(fp.platform);
    c.Form_Load();
    c.setDebugInfo(size % 2 == 0);
    c.parts().commands.S_RunCommands(std::string(reinterpret_cast<const char*>(data), size));
    for (int i = 0; i < 64 && c.parts().sender.queued() > 0; ++i) c.Queue_Timer();
    return 0;
}
