// The site book reader on any text, and SaveSites then LoadSites giving back
// records that the writer can write: fields without line breaks, and a
// description of CR LF lines none of which is "#". An empty description
// comes back as one CR LF, as the format has it.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "sites/site_book.h"
#include "support/memory_file_system.h"

using namespace kelpa;

namespace {

std::string field(FuzzedDataProvider& in) {
    std::string s = in.ConsumeRandomLengthString(64);
    std::erase_if(s, [](char c) { return c == '\r' || c == '\n'; });
    return s;
}

std::string description(FuzzedDataProvider& in) {
    const int lines = in.ConsumeIntegralInRange(0, 4);
    std::string d;
    for (int i = 0; i < lines; ++i) {
        std::string line = field(in);
        if (line == "#") line = "##";
        if (i) d += "\r\n";
        d += line;
    }
    return d;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    {
        std::vector<SiteRecord> sites;
        parseSites(std::string_view(reinterpret_cast<const char*>(data), size), sites,
                   [](const std::string&) {});
    }
    std::vector<SiteRecord> saved;
    const int count = in.ConsumeIntegralInRange(0, 5);
    for (int i = 0; i < count; ++i) {
        SiteRecord r;
        r.SiteName = field(in);
        r.ShortName = field(in);
        r.DnsName = field(in);
        r.DnsAlternate = field(in);
        r.DefaultPort = in.ConsumeIntegral<std::int32_t>();
        r.AlternatePort = in.ConsumeIntegral<std::int32_t>();
        r.InitString = field(in);
        r.Description = description(in);
        saved.push_back(std::move(r));
    }
    test::MemoryFileSystem files;
    if (!SaveSites(files, saved)) std::abort();
    std::vector<SiteRecord> loaded;
    LoadSites(files, loaded);
    if (loaded.size() != saved.size()) std::abort();
    for (std::size_t i = 0; i < saved.size(); ++i) {
        SiteRecord want = saved[i];
        if (want.Description.empty()) want.Description = "\r\n";
        if (!(loaded[i] == want)) std::abort();
    }
    return 0;
}
