#include "history/history_browser.h"

#include <algorithm>
#include <cmath>

#include "common/codepage.h"
#include "common/text.h"

namespace kelpa {

void HistoryBrowser::brefresh_Click() {
    DList = files_.list(folder(), ".txt");
    // Day logs copied from a case-blind system may spell the "H." in any case.
    std::erase_if(DList, [](const std::string& name) {
        return name.size() < 6 || (name[0] != 'H' && name[0] != 'h') || name[1] != '.';
    });
    // Oldest first, whatever the case of the names' letters.
    std::sort(DList.begin(), DList.end(), lessIgnoringCase);
    ++revision;
}

std::string HistoryBrowser::loadingCaption(std::size_t count, std::size_t size) {
    const double percent = static_cast<double>(count) * 100.0 / static_cast<double>(size);
    const long long whole = std::llround(percent);
    std::string digits = decimal(whole);
    if (digits.size() < 2) digits.insert(0, 2 - digits.size(), '0');
    return "Loading (" + digits + "%)";
}

void HistoryBrowser::DList_DblClick(const std::string& item) {
    windows_.text[kHistView].clear();
    windows_.state[kHistView].StartLen = 0;
    HistViewVisible = false;
    ++revision;
    if (!item.empty()) waiting_.push_back(folder() + "/" + item);
    if (!loading()) next();
}

void HistoryBrowser::next() {
    file_.reset();
    while (!waiting_.empty()) {
        const std::string path = waiting_.front();
        waiting_.pop_front();
        file_ = files_.openRead(path);
        if (!file_) {
            debug_.DebugLog("Cannot read the log " + files_.absolute(path));
            continue;
        }
        size_ = file_->size();
        count_ = 0;
        if (size_ > 0) {
            Label8Visible = true;
            ++revision;
            return;
        }
        file_.reset();  // an empty day: nothing to read
    }
    HistViewVisible = true;
    Label8Visible = false;
    ++revision;
}

bool HistoryBrowser::step() {
    if (!file_) return false;
    const std::size_t want = std::min(kPiece, size_ - count_);
    const std::size_t got = file_->read(piece_, want);
    if (got > 0) {
        history_.append(piece_);
        count_ += got;
        Label8Caption = loadingCaption(count_, size_);
        ++revision;
    }
    if (got < want) debug_.DebugLog("Cannot read the log beyond " + decimal(static_cast<long long>(count_)) + " bytes");
    if (count_ >= size_ || got < want) next();
    return loading();
}

}  // namespace kelpa
