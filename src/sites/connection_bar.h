// The connection bar: the list of sites, the host and port boxes and the two
// connect buttons, as a model that the widgets mirror.
#pragma once

#include <string>
#include <vector>

#include "sites/site_book.h"

namespace kelpa {

struct ConnectionBar {
    static constexpr const char* kDefaultHost = "localhost";

    std::vector<SiteRecord> Sites;
    SiteRecord CurrentSite;
    // CB_Connections: its items are the sites' names in array order.
    std::vector<std::string> items;
    int listIndex = -1;

    std::string Site = kDefaultHost;
    std::string PPort = "23";
    std::string SPort = "5023";

    bool connectEnabled = true;
    bool disconnectEnabled = false;

    // The selection event, also raised when the program sets the index.
    void CB_Connections_Click(int index);

    // Reads the site book again, fills the list and selects the first site.
    SiteBookRead reload(FileSystem& files, const SiteWarning& warn = {});

    // The site selected in the list, if any.
    const SiteRecord* selected() const;
};

}  // namespace kelpa
