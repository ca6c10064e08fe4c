// CONN.ZIG: the player's list of servers, one block of CR LF lines a site.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace kelpa {

struct SiteRecord {
    std::string SiteName;
    std::string ShortName;
    std::string DnsName;
    std::string DnsAlternate;
    std::int32_t DefaultPort = 0;
    std::int32_t AlternatePort = 0;
    std::string InitString;
    std::string Description;
    friend bool operator==(const SiteRecord&, const SiteRecord&) = default;
};

inline constexpr const char* kSiteBookFile = "CONN.ZIG";

using SiteWarning = std::function<void(const std::string&)>;

// Reads a site book text. A text with no "SITE=" line leaves `sites` as it
// was; otherwise `sites` becomes the blocks read.
void parseSites(std::string_view text, std::vector<SiteRecord>& sites,
                const SiteWarning& warn = {});
std::string formatSites(const std::vector<SiteRecord>& sites);

enum class SiteBookRead {
    Read,
    // There was none and none could be made (a read-only folder): no sites.
    NotMade,
    // A book stands there but cannot be read; `sites` is left as it was.
    Unreadable,
    // The book is UTF-16 text, which holds no site read as 8-bit text;
    // `sites` is left as it was.
    Utf16,
};
// What the player is told when the book was not read ("" when it was):
// "Cannot create the site book PATH: why" or "Cannot read the site book ...".
std::string siteBookProblem(SiteBookRead read, const FileSystem& files);
// Creates an empty CONN.ZIG if there is none, then reads it.
SiteBookRead LoadSites(FileSystem& files, std::vector<SiteRecord>& sites, const SiteWarning& warn = {});
// Writes the whole book; false if the file could not be written.
bool SaveSites(FileSystem& files, const std::vector<SiteRecord>& sites);

}  // namespace kelpa
