// The history browser: the day logs of the current site, and the loader
// that appends a chosen day to HistoryText in pieces, one piece per step,
// so that the event loop turns between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "history/history_text.h"
#include "history/session_log.h"
#include "output/debug_channel.h"
#include "output/window_state.h"
#include "platform/platform.h"

namespace kelpa {

class HistoryBrowser {
public:
    static constexpr std::size_t kPiece = 32768;

    // `shortName` gives the short name of the current site at each call.
    HistoryBrowser(FileSystem& files, HistoryText& history, OutputWindows& windows, DebugChannel& debug,
                   std::function<std::string()> shortName)
        : files_(files), history_(history), windows_(windows), debug_(debug), shortName_(std::move(shortName)) {}

    // DList: the bare file names, sorted, so the days come oldest first.
    std::vector<std::string> DList;
    bool HistViewVisible = true;
    bool Label8Visible = false;
    std::string Label8Caption = "Loading .....";
    // Changes whenever one of the above changed; lets the page skip a sync.
    std::uint64_t revision = 0;

    void brefresh_Click();
    // The text of the selected item; "" when nothing is selected. A day
    // chosen during a load is loaded after it.
    void DList_DblClick(const std::string& item);

    bool loading() const { return file_ != nullptr; }
    // Reads and appends one piece; false once no load is left.
    bool step();
    // Runs every load to its end at once (tests, benches).
    void finish() {
        while (step()) {
        }
    }

    // The caption for `count` of `size` bytes read.
    static std::string loadingCaption(std::size_t count, std::size_t size);

private:
    std::string folder() const { return SessionLog::folderFor(shortName_()); }
    // Opens the next waiting day; at the end of all, shows HistView again.
    void next();

    FileSystem& files_;
    HistoryText& history_;
    OutputWindows& windows_;
    DebugChannel& debug_;
    std::function<std::string()> shortName_;

    std::deque<std::string> waiting_;  // paths
    std::unique_ptr<ReadFile> file_;
    std::size_t size_ = 0;
    std::size_t count_ = 0;
    std::string piece_;
};

}  // namespace kelpa
