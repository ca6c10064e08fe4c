// The two views of the run's history, side by side: the live pager of
// SSTab2, the browser of day logs, and Seek and Filter over both.
#pragma once

#include <functional>
#include <string>

#include "history/history_browser.h"
#include "history/history_pager.h"
#include "history/history_search.h"

namespace kelpa {

struct HistoryViews {
    HistoryViews(HistoryText& history, OutputWriter& writer, OutputWindows& windows, DebugChannel& debug,
                 FileSystem& files, std::function<std::string()> shortName)
        : pager(history, writer, windows),
          search(history, pager, writer, windows, debug),
          browser(files, history, windows, debug, std::move(shortName)) {}

    HistoryPager pager;
    HistorySearch search;
    HistoryBrowser browser;
};

}  // namespace kelpa
