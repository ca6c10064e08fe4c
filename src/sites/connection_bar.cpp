#include "sites/connection_bar.h"

#include "common/text.h"

namespace kelpa {

void ConnectionBar::CB_Connections_Click(int index) {
    if (index < 0 || index >= static_cast<int>(Sites.size())) return;
    listIndex = index;
    const SiteRecord& s = Sites[static_cast<std::size_t>(index)];
    Site = s.DnsName;
    PPort = decimal(s.DefaultPort);
    SPort = decimal(s.AlternatePort);
    CurrentSite = s;
}

SiteBookRead ConnectionBar::reload(FileSystem& files, const SiteWarning& warn) {
    const SiteBookRead read = LoadSites(files, Sites, warn);
    items.clear();
    listIndex = -1;
    if (Sites.empty()) return read;
    for (const SiteRecord& s : Sites) items.push_back(s.SiteName);
    CB_Connections_Click(0);
    return read;
}

const SiteRecord* ConnectionBar::selected() const {
    if (listIndex < 0 || listIndex >= static_cast<int>(Sites.size())) return nullptr;
    return &Sites[static_cast<std::size_t>(listIndex)];
}

}  // namespace kelpa
