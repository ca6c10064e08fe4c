#include "sites/site_book.h"

#include "common/lines.h"
#include "common/numbers.h"
#include "common/text.h"

namespace kelpa {

namespace {

bool opensBlock(std::string_view line) { return line.substr(0, 5) == "SITE="; }

std::string valueOf(std::string_view line) {
    return line.size() > 5 ? std::string(line.substr(5)) : std::string();
}

std::int32_t portOf(std::string_view line, const std::string& site, const SiteWarning& warn) {
    std::string v = valueOf(line);
    std::size_t i = 0;
    if (i < v.size() && (v[i] == '-' || v[i] == '+')) ++i;
    bool clean = i < v.size();
    for (; i < v.size(); ++i) clean = clean && v[i] >= '0' && v[i] <= '9';
    if (!clean && warn) warn("CONN.ZIG: port \"" + v + "\" of site " + site + " is not a number");
    return valInt32Clamped(v);
}

}  // namespace

void parseSites(std::string_view text, std::vector<SiteRecord>& sites, const SiteWarning& warn) {
    FileLines in(text);
    std::vector<SiteRecord> read;
    std::string_view line;
    bool haveLine = false;  // a "SITE=" line met while a block was read
    while (haveLine || !in.atEnd()) {
        if (!haveLine) line = in.next();
        haveLine = false;
        if (!opensBlock(line)) continue;
        SiteRecord site;
        site.SiteName = valueOf(line);
        // The fields are taken by their place; a "SITE=" line where a field
        // should stand means the block was cut short and starts the next.
        std::string fields[7];
        int got = 0;
        for (; got < 7 && !in.atEnd(); ++got) {
            if (opensBlock(in.peek())) break;
            fields[got] = std::string(in.next());
        }
        site.ShortName = valueOf(fields[0]);
        site.DnsName = valueOf(fields[1]);
        site.DnsAlternate = valueOf(fields[2]);
        site.DefaultPort = got > 3 ? portOf(fields[3], site.SiteName, warn) : 0;
        site.AlternatePort = got > 4 ? portOf(fields[4], site.SiteName, warn) : 0;
        site.InitString = valueOf(fields[5]);
        if (got < 7) {
            if (warn) warn("CONN.ZIG: the block of site " + site.SiteName + " is cut short");
            read.push_back(std::move(site));
            if (!in.atEnd()) {
                line = in.next();
                haveLine = true;
            }
            continue;
        }
        std::string_view last = fields[6];
        while (last != "#" && !in.atEnd()) {
            last = in.next();
            if (last == "#") break;
            site.Description.append(last).append("\r\n");
        }
        if (site.Description.size() > 2) site.Description.resize(site.Description.size() - 2);
        read.push_back(std::move(site));
    }
    if (!read.empty()) sites = std::move(read);
}

std::string formatSites(const std::vector<SiteRecord>& sites) {
    std::string out;
    for (const SiteRecord& s : sites) {
        out += "SITE=" + s.SiteName + "\r\n";
        out += "SSNA=" + s.ShortName + "\r\n";
        out += "SDNS=" + s.DnsName + "\r\n";
        out += "SDNA=" + s.DnsAlternate + "\r\n";
        out += "SDP_=" + decimal(s.DefaultPort) + "\r\n";
        out += "SAP_=" + decimal(s.AlternatePort) + "\r\n";
        out += "STRI=" + s.InitString + "\r\n";
        out += "SDSC=\r\n";
        out += s.Description + "\r\n";
        out += "#\r\n";
    }
    return out;
}

SiteBookRead LoadSites(FileSystem& files, std::vector<SiteRecord>& sites, const SiteWarning& warn) {
    if (!files.exists(kSiteBookFile) && !files.writeAll(kSiteBookFile, "")) {
        sites.clear();
        return SiteBookRead::NotMade;
    }
    std::string text;
    if (!files.readAll(kSiteBookFile, text)) return SiteBookRead::Unreadable;
    // Read as 8-bit text it holds no site, and a save would empty it.
    if (isUtf16Text(text)) return SiteBookRead::Utf16;
    parseSites(text, sites, warn);
    return SiteBookRead::Read;
}

std::string siteBookProblem(SiteBookRead read, const FileSystem& files) {
    if (read == SiteBookRead::Read) return {};
    const std::string why = read == SiteBookRead::Utf16 ? std::string(kUtf16Reason) : files.lastError();
    return (read == SiteBookRead::NotMade ? "Cannot create the site book " : "Cannot read the site book ") +
           files.absolute(kSiteBookFile) + (why.empty() ? "" : ": " + why);
}

bool SaveSites(FileSystem& files, const std::vector<SiteRecord>& sites) {
    return files.writeAll(kSiteBookFile, formatSites(sites));
}

}  // namespace kelpa
