#include "sites/site_manager.h"

#include <cmath>
#include <tuple>

#include "common/numbers.h"
#include "common/text.h"

namespace kelpa {

SiteManager::SiteManager(FileSystem& files) : files_(files) {}

void SiteManager::Form_Load() {
    loadProblem_.clear();
    const SiteBookRead read = LoadSites(files_, Sites);
    if (read == SiteBookRead::Unreadable || read == SiteBookRead::Utf16)
        loadProblem_ = siteBookProblem(read, files_) +
                       ". Its sites are not shown, and Save is refused so that they are not replaced.";
    refillList();
}

void SiteManager::refillList() {
    items.clear();
    items.reserve(Sites.size());
    for (const SiteRecord& s : Sites) items.push_back(s.SiteName);
    listIndex = -1;
}

void SiteManager::SitesList_Click(int index) {
    if (index < 0 || index >= static_cast<int>(items.size())) return;
    listIndex = index;
    const std::string& name = items[static_cast<std::size_t>(index)];
    for (const SiteRecord& s : Sites) {
        if (s.SiteName != name) continue;
        boxes = SiteBoxes{s.SiteName,   s.ShortName,   s.DnsName,    s.DnsAlternate, decimal(s.DefaultPort),
                          decimal(s.AlternatePort), s.InitString, s.Description};
        return;
    }
}

std::optional<std::int32_t> SiteManager::portOf(std::string_view text) const {
    // The default rounding mode rounds half to even.
    const double v = std::nearbyint(Val(text));
    if (!(v >= -2147483648.0 && v <= 2147483647.0)) return std::nullopt;
    return static_cast<std::int32_t>(v);
}

std::string SiteManager::CMD_SiteAdd_Click() {
    const auto dport = portOf(boxes.Dport);
    const auto aport = portOf(boxes.Aport);
    for (auto [port, caption, text] : {std::tuple{&dport, "Default Port", &boxes.Dport},
                                       std::tuple{&aport, "Alternate Port", &boxes.Aport}})
        if (!*port)
            return std::string(caption) + " \"" + *text +
                   "\" is not a number from -2147483648 to 2147483647. Nothing was stored.";
    // The name decides between a new entry and a change, not the selection.
    std::size_t i = 0;
    while (i < items.size() && Sites[i].SiteName != boxes.SiteName) ++i;
    if (i == Sites.size()) Sites.emplace_back();
    SiteRecord& s = Sites[i];
    s.SiteName = boxes.SiteName;
    s.ShortName = boxes.SSname;
    s.DnsName = boxes.DNSIP;
    s.DnsAlternate = boxes.DnsIPAlternate;
    s.DefaultPort = *dport;
    s.AlternatePort = *aport;
    s.InitString = trimBlanks(boxes.STRI);
    s.Description = boxes.DESC;
    refillList();
    return {};
}

void SiteManager::CMD_SiteDelete_Click() {
    if (listIndex < 0 || Sites.size() <= 1) return;
    int k = listIndex;
    Sites.erase(Sites.begin() + k);
    refillList();
    const int count = static_cast<int>(items.size());
    if (k >= count) k = count - 1;
    if (count > 0) SitesList_Click(k);
}

std::string SiteManager::OKButton_Click() {
    if (!loadProblem_.empty()) return loadProblem_ + " The file is unchanged.";
    if (SaveSites(files_, Sites)) return {};
    std::string why = "Cannot save the site book " + files_.absolute(kSiteBookFile);
    const std::string reason = files_.lastError();
    if (!reason.empty()) why += ": " + reason;
    // A book that could not even be made has nothing to keep.
    return why + (files_.exists(kSiteBookFile) ? ". The file is unchanged." : ".");
}

}  // namespace kelpa
