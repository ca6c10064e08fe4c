// The live history view: one page of HistoryText at a time in HistT
// (window 7), moved by the keys. Positions are 1-based as HistoryPos holds
// them: the CR of a CR LF, 1 for the start, or the length for the end.
// Every step reads only the bytes around the page, never the whole text.
#pragma once

#include <cstddef>
#include <string>

#include "history/history_text.h"
#include "output/output_writer.h"
#include "output/window_state.h"

namespace kelpa {

class HistoryPager {
public:
    static constexpr int kPageLines = 28;
    static constexpr int kPageStep = 27;
    static constexpr int kHistoryTab = 1;  // page "History" of SSTab2

    enum KeyCode : int {
        kPageUp = 33,
        kPageDown = 34,
        kEnd = 35,
        kHome = 36,
        kUp = 38,
        kDown = 40,
    };

    HistoryPager(HistoryText& history, OutputWriter& writer, OutputWindows& windows)
        : history_(history), writer_(writer), windows_(windows) {}

    void ShowHistoryPage();
    void SSTab2_Click(int tab) {
        if (tab == kHistoryTab) ShowHistoryPage();
    }
    // Every key is taken: the control itself never acts on one.
    void HistT_KeyDown(int keyCode);
    // Whether the page shown was drawn from the end of the text (End, new
    // text, Down at the last line): a view too small for it shows its last
    // line, the newest, rather than its top.
    bool showsTheEnd() const { return showsTheEnd_; }

    // The CR of the last CR LF that ends at or before p - 1; 0 for none.
    std::size_t searchBack(std::size_t p) const;
    // The CR of the first CR LF that starts at or after p + 1; 0 for none.
    std::size_t searchForward(std::size_t p) const;

    std::size_t backOnePage(std::size_t pos) const;
    // Where the page at HistoryPos begins (0-based), as ShowHistoryPage
    // would find it, without moving anything.
    std::size_t topOfPage() const;
    // HistoryPos for a page whose first line begins at `lineStart` (0-based).
    static std::size_t posOfLine(std::size_t lineStart) { return lineStart >= 2 ? lineStart - 1 : 1; }

private:
    // Start (0-based) of the text behind the line break at `pos`.
    std::size_t pageStart(std::size_t pos) const;

    HistoryText& history_;
    OutputWriter& writer_;
    OutputWindows& windows_;
    bool showsTheEnd_ = true;
};

}  // namespace kelpa
