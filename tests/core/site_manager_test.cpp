// The site manager's model: ports, add or modify by name, delete and its
// selection, and saving twice the same.
#include <gtest/gtest.h>

#include <tuple>

#include "shell/client.h"
#include "sites/site_manager.h"
#include "support/fakes.h"
#include "support/memory_file_system.h"

using namespace kelpa;
using kelpa::test::FakePlatform;
using kelpa::test::MemoryFileSystem;

namespace {

using Book = std::vector<SiteRecord>;

SiteRecord site(std::string name, std::int32_t port = 4000) {
    return SiteRecord{name, "s" + name, name + ".org", "alt." + name, port, port + 1, "#10#", "about " + name};
}

struct Manager {
    explicit Manager(std::vector<SiteRecord> book = {}) {
        files.files[kSiteBookFile] = formatSites(book);
        m.Form_Load();
    }
    std::string book() const { return files.files.at(kSiteBookFile); }
    MemoryFileSystem files;
    SiteManager m{files};
};

}  // namespace

TEST(SiteManager, AddOrModifyIsDecidedByTheExactName) {
    Manager s;
    // An empty book gets its first entry; the init string loses its outer blanks only.
    s.m.boxes = {" Mud ", " m ", "mud.org", "alt.org", " 23x", "5e1", "  #10#look  ", "a\r\nb"};
    EXPECT_EQ(s.m.CMD_SiteAdd_Click(), "");
    EXPECT_EQ(s.m.Sites, (Book{{" Mud ", " m ", "mud.org", "alt.org", 23, 50, "#10#look", "a\r\nb"}}));
    EXPECT_EQ(s.m.boxes.SiteName, " Mud ") << "the boxes keep their text";

    s.m.SitesList_Click(0);
    s.m.boxes.STRI = "    ";
    s.m.boxes.Dport = "4000";
    EXPECT_EQ(s.m.CMD_SiteAdd_Click(), "");
    EXPECT_EQ(s.m.listIndex, -1) << "no entry selected after a change";
    // The same name changes the entry; blanks only: nothing sent on connecting.
    EXPECT_EQ(s.m.Sites, (Book{{" Mud ", " m ", "mud.org", "alt.org", 4000, 50, "", "a\r\nb"}}));

    for (const std::string name : {" mud ", "Mud"}) {
        s.m.boxes.SiteName = name;
        s.m.CMD_SiteAdd_Click();
    }
    EXPECT_EQ(s.m.items, (std::vector<std::string>{" Mud ", " mud ", "Mud"})) << "no rename, case counts";
    EXPECT_EQ(s.book(), "") << "nothing reaches the file before Save";
}

TEST(SiteManager, DeleteKeepsTheLastSiteAndSelectsTheEntryInTheDeletedPlace) {
    // Sites in the book, the one selected, then the entries left, the
    // selection and the name in the boxes.
    const std::tuple<int, int, const char*> rows[] = {
        {1, 0, "0 | 0 0"},    // the last site stays
        {2, -1, "0 1 | -1 "},  // nothing selected: nothing deleted
        {2, 1, "0 | 0 0"},    // the last entry: the new last is selected
        {3, 1, "0 2 | 1 2"},  // the next one takes the place
        {3, 0, "1 2 | 0 1"},
    };
    for (const auto& [sites, selected, after] : rows) {
        std::vector<SiteRecord> book;
        for (int i = 0; i < sites; ++i) book.push_back(site(std::to_string(i)));
        Manager s(book);
        if (selected >= 0) s.m.SitesList_Click(selected);
        s.m.CMD_SiteDelete_Click();
        std::string left;
        for (const std::string& item : s.m.items) left += item + " ";
        EXPECT_EQ(left + "| " + std::to_string(s.m.listIndex) + " " + s.m.boxes.SiteName, after)
            << sites << " sites, " << selected << " selected";
        EXPECT_EQ(s.book(), formatSites(book)) << "Delete does not touch the file";
    }
}

// A book that stands there but cannot be read is never replaced; one that
// is missing and cannot be made (a read-only folder) is no book: no sites,
// and a save tries and says why it failed.
TEST(SiteManager, ABookThatCannotBeReadIsNeverReplacedAndOneThatCannotBeMadeIsNone) {
    MemoryFileSystem files;
    files.folders.insert(kSiteBookFile);  // there, but no file to read
    SiteManager m{files};
    m.Form_Load();
    EXPECT_EQ(m.loadProblem().rfind("Cannot read the site book " + files.absolute(kSiteBookFile), 0), 0u)
        << m.loadProblem();
    m.boxes = {"New", "new", "new.org", "", "23", "0", "", ""};
    m.CMD_SiteAdd_Click();
    EXPECT_EQ(m.OKButton_Click(), m.loadProblem() + " The file is unchanged.");
    EXPECT_EQ(files.files.count(kSiteBookFile), 0u);
    // A book Notepad saved as "Unicode" is refused the same way, with why.
    const std::string utf16("\xFF\xFES\0I\0T\0E\0=\0M\0u\0d\0\r\0\n\0", 20);
    MemoryFileSystem wide;
    wide.files[kSiteBookFile] = utf16;
    SiteManager w{wide};
    w.Form_Load();
    EXPECT_EQ(w.loadProblem(), "Cannot read the site book mem:/CONN.ZIG: it is UTF-16 text (\"Unicode\" in Notepad); "
                               "save it as ANSI text. Its sites are not shown, and Save is refused so that they are "
                               "not replaced.");
    w.boxes = {"New", "new", "new.org", "", "23", "0", "", ""};
    w.CMD_SiteAdd_Click();
    w.OKButton_Click();
    EXPECT_EQ(wide.files[kSiteBookFile], utf16);

    MemoryFileSystem readOnly;
    readOnly.readOnly = true;
    std::vector<SiteRecord> sites{site("old")};
    EXPECT_EQ(LoadSites(readOnly, sites), SiteBookRead::NotMade);
    EXPECT_TRUE(sites.empty());
    SiteManager n{readOnly};
    n.Form_Load();
    EXPECT_EQ(n.loadProblem(), "");
    EXPECT_EQ(n.OKButton_Click(), "Cannot save the site book mem:/CONN.ZIG.");
    FakePlatform fp;
    Platform platform{fp.socket, fp.clock, fp.random, readOnly, fp.host};
    Client c{platform};
    c.Form_Load();
    EXPECT_EQ(c.parts().windows.text[kDebugWindow].text(), "Cannot create the site book mem:/CONN.ZIG\r\n");
}
