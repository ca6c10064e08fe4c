// DLG_SiteMan as a model: the dialog's own copy of the site book, its list
// and the text of its boxes. The widgets mirror it and forward the clicks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sites/site_book.h"

namespace kelpa {

// The text of the dialog's boxes, in the dialog's bytes.
struct SiteBoxes {
    std::string SiteName;        // TXT_SiteName
    std::string SSname;          // TXT_SSname
    std::string DNSIP;           // TXT_DNSIP
    std::string DnsIPAlternate;  // TXT_DnsIPAlternate
    std::string Dport;           // TXT_Dport
    std::string Aport;           // TXT_Aport
    std::string STRI;            // TXT_STRI
    std::string DESC;            // TXT_DESC, lines ended by CR LF
    friend bool operator==(const SiteBoxes&, const SiteBoxes&) = default;
};

class SiteManager {
public:
    explicit SiteManager(FileSystem& files);

    void Form_Load();
    // Empty, or why the book could not be read when the dialog opened:
    // Save then refuses to write a book that would replace it.
    const std::string& loadProblem() const { return loadProblem_; }
    // Selects the item and shows the first entry that bears its name.
    void SitesList_Click(int index);
    // Stores the boxes under their name. Empty, or why nothing was stored.
    std::string CMD_SiteAdd_Click();
    void CMD_SiteDelete_Click();
    // Writes the book. Empty, or why the file is unchanged.
    std::string OKButton_Click();

    // A port box's text as a port: blanks skipped, the number at its head
    // rounded half to even, 0 when there is none; nothing when it leaves
    // the signed 32-bit range.
    std::optional<std::int32_t> portOf(std::string_view text) const;

    std::vector<SiteRecord> Sites;
    // SitesList: the names in array order, and the selection (-1 for none).
    std::vector<std::string> items;
    int listIndex = -1;
    SiteBoxes boxes;

private:
    void refillList();

    FileSystem& files_;
    std::string loadProblem_;
};

}  // namespace kelpa
