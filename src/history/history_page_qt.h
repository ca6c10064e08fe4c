// The history's controls: the browser page of ToolsTabs (DList, Label8,
// Tseek, BSeek, BFilter, brefresh, HistView) and the keys and page change
// of HistT. They mirror the core's history views and hand every action to
// them; loads and searches go on in steps from zero-interval timers, so the
// event loop turns between two pieces.
#pragma once

#include <QObject>
#include <QTimer>

#include <cstdint>
#include <functional>

#include "history/history_views.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QWidget;

namespace kelpa::qt {

class OutputView;
class TabControl;

class HistoryPage : public QObject {
    Q_OBJECT
public:
    using Guard = std::function<void(const char* handler, const std::function<void()>& f)>;

    struct Controls {
        QWidget* page;  // the page "History" of ToolsTabs, holding HistView
        OutputView* HistView;
        OutputView* HistT;
        TabControl* SSTab1;
        TabControl* SSTab2;
    };

    // busy: a handler is running (a box is up); the page's own steps wait.
    HistoryPage(const Controls& controls, HistoryViews& views, Guard guard, std::function<bool()> busy);

    // Shows what the browser changed since the last call.
    void sync();
    // A double click on DList: loads the selected day.
    void DList_DblClick();

    QListWidget* DList = nullptr;
    QLabel* Label8 = nullptr;
    QLineEdit* Tseek = nullptr;
    QPushButton* BSeek = nullptr;
    QPushButton* BFilter = nullptr;
    QPushButton* brefresh = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    void BSeek_Click();
    void BFilter_Click();
    void runSearch();
    void showSeekFailed(bool failed);

    Controls c_;
    HistoryViews& views_;
    Guard guard_;
    std::function<bool()> busy_;
    QTimer loader_;
    QTimer searcher_;
    std::uint64_t shownRevision_ = ~std::uint64_t{0};
    bool seeking_ = false;
};

}  // namespace kelpa::qt
