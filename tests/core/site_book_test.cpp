// CONN.ZIG: the writer's block layout, reading it back, and damaged blocks.
#include <gtest/gtest.h>

#include "common/text.h"
#include "sites/site_book.h"

using namespace kelpa;

namespace {

SiteRecord rec(std::string name, std::string desc = "d", std::int32_t port = 23) {
    return SiteRecord{name, "s" + name, name + ".org", "alt." + name, port, port + 1,
                      "#24#init", std::move(desc)};
}

std::vector<SiteRecord> parse(const std::string& text) {
    std::vector<SiteRecord> sites;
    parseSites(text, sites);
    return sites;
}

}  // namespace

TEST(SiteBook, WriterProducesTheBlockLayoutAndRecordsComeBack) {
    EXPECT_EQ(formatSites({rec("Mud", "first\r\nsecond", -7)}),
              "SITE=Mud\r\nSSNA=sMud\r\nSDNS=Mud.org\r\nSDNA=alt.Mud\r\nSDP_=-7\r\nSAP_=-6\r\n"
              "STRI=#24#init\r\nSDSC=\r\nfirst\r\nsecond\r\n#\r\n");
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a\r\nb\r\nc", "a\r\nb\r\nc"},
        {"ends\r\n", "ends\r\n"},
        {"", "\r\n"},  // one empty line, read as a single CR LF
        {"\r\n", "\r\n"},
        {"SITE=inside", "SITE=inside"},
    };
    for (const auto& [desc, readBack] : rows) {
        const std::vector<SiteRecord> book = {rec("A", desc), rec("B", "second")};
        std::vector<SiteRecord> expected = book;
        expected[0].Description = readBack;
        const std::string crlf = formatSites(book);
        // A lone CR or LF ends lines too; a byte order mark at the start is no text.
        for (const char* end : {"\r\n", "\n", "\r"})
            EXPECT_EQ(parse(replaceAll(crlf, "\r\n", end)), expected) << desc;
        EXPECT_EQ(parse("\xEF\xBB\xBF" + crlf), expected) << desc;
    }
}

TEST(SiteBook, DamagedPortsAndCutBlocksLoseNoOtherSite) {
    std::vector<std::string> warnings;
    std::vector<SiteRecord> sites;
    parseSites("SITE=a\r\nSSNA=s\r\nSDNS=h\r\nSDNA=\r\nSDP_=23abc\r\nSAP_=\r\nSTRI=\r\nSDSC=\r\n\r\n#\r\n"
               "SITE=cut\r\nSSNA=c\r\n" + formatSites({rec("b", "z")}),
               sites, [&](const std::string& w) { warnings.push_back(w); });
    const std::vector<SiteRecord> expected = {
        {"a", "s", "h", "", 23, 0, "", "\r\n"}, {"cut", "c", "", "", 0, 0, "", ""}, rec("b", "z")};
    EXPECT_EQ(sites, expected);
    ASSERT_EQ(warnings.size(), 3u) << "two ports and one cut block";
    EXPECT_NE(warnings[0].find("\"23abc\" of site a"), std::string::npos) << warnings[0];
}
