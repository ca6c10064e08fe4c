// The main window. It owns the core (a Client) and mirrors it: widgets keep
// no state of their own that the core does not hold, and every user action
// is handed to the core. After each event one coalescing timer refreshes
// all mirrors, so that a flood of text repaints at most once per frame.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "shell/client.h"
#include "shell/event_gate.h"
#include "shell/frame_pacer.h"
#include "shell/form_layout.h"
#include "status/status_panel_qt.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kelpa::qt {

class BulkDialog;
class FlagsForm;
class HistoryPage;
class MacroPage;
class OutputView;
class QtSocket;
class TabControl;
class TriggerPage;
struct QtPlatform;

class MainForm : public QWidget {
    Q_OBJECT
public:
    // Runs the core's start-up; the timers start with it. The start-up note
    // is the debug window's first line, before anything the start-up says.
    explicit MainForm(Platform& platform, QWidget* parent = nullptr, const std::string& startupNote = {});
    ~MainForm() override;

    // The window over the real socket, clock and program folder.
    static std::unique_ptr<MainForm> createForThisSystem();
    // The same over a given platform, such as one rooted in another folder.
    static std::unique_ptr<MainForm> createOn(std::unique_ptr<QtPlatform> platform,
                                              const std::string& startupNote = {});
    QtPlatform* qtPlatform() const { return ownPlatform_.get(); }

    Client& client() { return client_; }
    // Mirrors the core now, instead of at the next frame.
    void syncFromCore();

    OutputView* outputWindow(int win) const { return views_.at(static_cast<std::size_t>(win)); }
    BulkDialog* bulkDialog() const { return bulk_; }
    FlagsForm* flagsForm() const { return flags_; }
    TriggerPage* triggerPage() const { return triggerPage_; }
    MacroPage* macroPage() const { return macroPage_; }
    HistoryPage* historyPage() const { return historyPage_; }
    TabControl* tabs() const { return SSTab1_; }
    const StatusPanel& statusPanel() const { return status_; }

    // The socket's events reach the handlers below.
    void listenTo(QtSocket& socket);

    // The socket's events. Each waits while a handler is busy (a modal box
    // is up) and runs once it is over.
    void s_Connect();
    void s_DataArrival();
    void s_Close();
    void s_Error(int number, const QString& description, long long scode);

protected:
    void resizeEvent(QResizeEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    // Every call into the core goes through here: a failure is told on the
    // debug channel and never ends the program.
    template <typename F>
    void guarded(const char* handler, F&& f);
    void guardedCall(const char* handler, const std::function<void()>& call);
    template <typename F>
    void tell(const char* handler, F&& f);
    // A socket event or timer tick: runs at once, or waits at the gate.
    bool fromOutside(EventGate::Key key, const char* handler, std::function<void()> call);
    void scheduleRefresh();
    void terminate();

    // main_form_build_qt.cpp
    void buildLeftColumn();
    void buildWorkArea();
    void buildSystemPage(QWidget* page);
    void buildToolsPage(QWidget* page);
    OutputView* makeView(int win, QWidget* parent);
    void pagesByKeyboard();
    void collectLaidOutControls();
    void applyLayout();

    void connectControls();
    void startTimers();
    void syncConnectionBar();
    void listenToStatusPanel();
    void syncStatus();
    void Text1_Enter();
    void BTN_BULK_Click();
    void BTN_Flags_Click();
    void focusCommandLine();
    // main_form_dialogs_qt.cpp
    void CMD_SaveConnection_Click();
    void CMD_About_Click();

    std::unique_ptr<QtPlatform> ownPlatform_;
    Client client_;
    FormLayout layout_;
    std::map<std::string, QWidget*> laidOut_;
    bool terminated_ = false;
    EventGate gate_;
    QtSocket* socket_ = nullptr;

    QTimer refresh_;
    QElapsedTimer clock_;
    FramePacer pacer_;
    QTimer* as_timer_ = nullptr;
    QTimer* Timer3_ = nullptr;
    QTimer* Queue_ = nullptr;

    QComboBox* CB_Connections_ = nullptr;
    QLineEdit* Site_ = nullptr;
    QLineEdit* PPort_ = nullptr;
    QLineEdit* SPort_ = nullptr;
    QPushButton* CMD_CONNECT_ = nullptr;
    QPushButton* CMD_DISCONNECT_ = nullptr;
    StatusPanel status_;
    QWidget* PlayGround_ = nullptr;
    TabControl* SSTab1_ = nullptr;
    TabControl* SSTab2_ = nullptr;
    TabControl* ToolsTabs_ = nullptr;
    QLineEdit* Text1_ = nullptr;
    QPushButton* BTN_BULK_ = nullptr;
    QPushButton* BTN_Flags_ = nullptr;
    QCheckBox* DebugInfo_ = nullptr;
    QCheckBox* IG_ = nullptr;
    QCheckBox* CT_ = nullptr;
    std::array<OutputView*, kWindowCount> views_{};
    BulkDialog* bulk_ = nullptr;
    FlagsForm* flags_ = nullptr;
    TriggerPage* triggerPage_ = nullptr;
    MacroPage* macroPage_ = nullptr;
    HistoryPage* historyPage_ = nullptr;
    std::uint64_t shownTabCaptions_ = 0;

    std::vector<std::string> shownSites_;
};

}  // namespace kelpa::qt
