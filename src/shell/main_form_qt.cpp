#include "shell/main_form_qt.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>

#include <exception>
#include <memory>

#include "command/bulk_dialog_qt.h"
#include "command/macro_page_qt.h"
#include "history/history_page_qt.h"
#include "output/output_view_qt.h"
#include "shell/kelpa_icon_qt.h"
#include "shell/qt_platform_qt.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"
#include "triggers/flags_form_qt.h"
#include "triggers/trigger_page_qt.h"

namespace kelpa::qt {

namespace {
// The windows follow the core at most once per frame: 17 ms keeps a flood
// under 60 repaints a second, however short the work between them.
constexpr int kFrameMs = 17;
}  // namespace

MainForm::MainForm(Platform& platform, QWidget* parent, const std::string& startupNote)
    : QWidget(parent), client_(platform), pacer_(kFrameMs) {
    setObjectName(QStringLiteral("MainForm"));
    mnemonicsClickAtOnce();
    setWindowTitle(QStringLiteral("Kelpa"));
    setWindowIcon(kelpaIcon());
    setBackground(this, QColor(128, 128, 128));
    setFont(formFont());
    resize(px(kFormInnerWidth), px(kFormInnerHeight));
    if (const QScreen* s = screen()) {
        resize(sizeOnScreen(size(), s->availableGeometry()));
        placeCentred(this, s->availableGeometry().center());
    }

    buildLeftColumn();
    buildWorkArea();
    bulk_ = new BulkDialog(this);
    flags_ = new FlagsForm(client_.flags(), [this](int i, bool on) {
        guarded("TRGFLAG_Click", [&] { client_.TRGFLAG_Click(i, on); });
    }, this);
    for (QWidget* dialog : {static_cast<QWidget*>(bulk_), static_cast<QWidget*>(flags_)})
        dialog->setAttribute(Qt::WA_QuitOnClose, false);
    // Typing goes on in the command line once the flags are put away, not
    // on the button that opened them (where Space would open them again).
    connect(flags_, &QDialog::finished, this, &MainForm::focusCommandLine);
    collectLaidOutControls();
    applyLayout();

    refresh_.setSingleShot(true);
    clock_.start();
    connect(&refresh_, &QTimer::timeout, this, &MainForm::syncFromCore);

    if (!startupNote.empty()) client_.startupNote(startupNote);
    guarded("Form_Load", [&] { client_.Form_Load(); });
    syncFromCore();
    connectControls();
    startTimers();
    connect(qApp, &QCoreApplication::aboutToQuit, this, &MainForm::terminate);
}

MainForm::~MainForm() { terminate(); }

std::unique_ptr<MainForm> MainForm::createForThisSystem() {
    return createOn(std::make_unique<QtPlatform>());
}

std::unique_ptr<MainForm> MainForm::createOn(std::unique_ptr<QtPlatform> platform, const std::string& startupNote) {
    QtPlatform& p = *platform;
    auto form = std::make_unique<MainForm>(p.platform, nullptr, startupNote);
    MainForm* f = form.get();
    f->ownPlatform_ = std::move(platform);
    p.host.attach(f, f->Text1_);
    f->listenTo(p.socket);
    if (p.history.usable()) f->client_.setHistoryStore(&p.history);
    return form;
}

void MainForm::listenTo(QtSocket& socket) {
    socket_ = &socket;
    gate_.setAfterHandlers([this] {
        if (!socket_) return;
        socket_->flushWrites();
        socket_->readLeftovers();
    });
    connect(&socket, &QtSocket::connected, this, &MainForm::s_Connect);
    connect(&socket, &QtSocket::dataArrival, this, &MainForm::s_DataArrival);
    connect(&socket, &QtSocket::closed, this, &MainForm::s_Close);
    connect(&socket, &QtSocket::failed, this, &MainForm::s_Error);
}

template <typename F>
void MainForm::guarded(const char* handler, F&& f) {
    gate_.run([&] { tell(handler, f); });
    scheduleRefresh();
}

template <typename F>
void MainForm::tell(const char* handler, F&& f) {
    try {
        f();
    } catch (const std::exception& e) {
        try {
            client_.DebugLog(std::string(handler) + ": " + e.what());
        } catch (...) {
        }
    } catch (...) {
        try {
            client_.DebugLog(std::string(handler) + ": unknown failure");
        } catch (...) {
        }
    }
}

bool MainForm::fromOutside(EventGate::Key key, const char* handler, std::function<void()> call) {
    const bool now = gate_.enter(key, [this, handler, call = std::move(call)] {
        if (!terminated_) tell(handler, call);
    });
    scheduleRefresh();
    return now;
}

void MainForm::guardedCall(const char* handler, const std::function<void()>& call) { guarded(handler, call); }

void MainForm::scheduleRefresh() {
    if (!refresh_.isActive()) refresh_.start(static_cast<int>(pacer_.delayMs(clock_.elapsed())));
}

void MainForm::syncFromCore() {
    refresh_.stop();
    pacer_.synced(clock_.elapsed());
    for (OutputView* v : views_) v->sync();
    syncStatus();
    syncConnectionBar();
    flags_->sync();
    triggerPage_->sync();
    macroPage_->sync();
    historyPage_->sync();
    // The captions of the custom tabs are the labels that LABELWINDOW gives.
    const TabCaptions& tabs = client_.tabCaptions();
    if (tabs.revision != shownTabCaptions_) {
        shownTabCaptions_ = tabs.revision;
        for (int i = 0; i < TabCaptions::kCount; ++i)
            SSTab1_->setTabCaption(i, toQString(tabs.caption[static_cast<std::size_t>(i)]));
    }
    for (auto [box, on] : {std::pair{IG_, client_.graphics()}, {CT_, client_.cleanerText()},
                           {DebugInfo_, client_.debugInfo()}}) {
        const QSignalBlocker block(box);
        box->setChecked(on);
    }
}

void MainForm::syncConnectionBar() {
    const ConnectionBar& bar = client_.connectionBar();
    if (bar.items != shownSites_) {
        const QSignalBlocker block(CB_Connections_);
        CB_Connections_->clear();
        for (const std::string& s : bar.items) CB_Connections_->addItem(toQString(s));
        shownSites_ = bar.items;
    }
    if (CB_Connections_->currentIndex() != bar.listIndex) {
        const QSignalBlocker block(CB_Connections_);
        CB_Connections_->setCurrentIndex(bar.listIndex);
    }
    for (auto [box, text] : {std::pair{Site_, &bar.Site}, {PPort_, &bar.PPort}, {SPort_, &bar.SPort}})
        setLineText(box, *text);
    // A button that goes grey under the focus would hand it along the chain
    // to the status tabs, where typing is lost: it goes to the command line.
    const bool focusGoesGrey = (CMD_CONNECT_->hasFocus() && !bar.connectEnabled) ||
                               (CMD_DISCONNECT_->hasFocus() && !bar.disconnectEnabled);
    if (focusGoesGrey) Text1_->setFocus();
    CMD_CONNECT_->setEnabled(bar.connectEnabled);
    CMD_DISCONNECT_->setEnabled(bar.disconnectEnabled);
}

void MainForm::connectControls() {
    connect(CB_Connections_, &QComboBox::activated, this,
            [this](int i) { guarded("CB_Connections_Click", [&] { client_.CB_Connections_Click(i); }); });
    for (auto [box, change] : {std::pair{Site_, &Client::Site_Change}, {PPort_, &Client::PPort_Change},
                               {SPort_, &Client::SPort_Change}})
        // What the box holds once it has taken the edit: a pasted line break
        // is a blank by then.
        connect(box, &QLineEdit::textEdited, this, [this, box, change] {
            guarded("TextBox_Change", [&] { (client_.*change)(toCoreBytes(box->text())); });
        });
    // After either button the player goes on typing: a login, or a new
    // host after a failure.
    connect(CMD_CONNECT_, &QPushButton::clicked, this, [this] {
        guarded("CMD_CONNECT_Click", [&] { client_.CMD_CONNECT_Click(); });
        Text1_->setFocus();
    });
    connect(CMD_DISCONNECT_, &QPushButton::clicked, this, [this] {
        guarded("CMD_DISCONNECT_Click", [&] { client_.CMD_DISCONNECT_Click(); });
        Text1_->setFocus();
    });
    connect(DebugInfo_, &QCheckBox::toggled, this,
            [this](bool on) { guarded("DebugInfo_Click", [&] { client_.setDebugInfo(on); }); });
    connect(IG_, &QCheckBox::toggled, this,
            [this](bool on) { guarded("IG_Click", [&] { client_.setGraphics(on); }); });
    connect(CT_, &QCheckBox::toggled, this,
            [this](bool on) { guarded("CT_Click", [&] { client_.setCleanerText(on); }); });
    connect(BTN_BULK_, &QPushButton::clicked, this, &MainForm::BTN_BULK_Click);
    connect(BTN_Flags_, &QPushButton::clicked, this, &MainForm::BTN_Flags_Click);
    connect(findChild<QPushButton*>(QStringLiteral("CMD_SaveConnection")), &QPushButton::clicked, this,
            &MainForm::CMD_SaveConnection_Click);
    connect(findChild<QPushButton*>(QStringLiteral("CMD_About")), &QPushButton::clicked, this,
            &MainForm::CMD_About_Click);
    Text1_->installEventFilter(this);
    pagesByKeyboard();
    // Typing at start goes to the command line, where it can do no harm;
    // the site list would take the letters as a choice of another site.
    Text1_->setFocus();
    listenToStatusPanel();
}

// Pages by keyboard: Ctrl+Tab and Ctrl+Shift+Tab step through the main tabs,
// Ctrl+PageDown and Ctrl+PageUp through the tabs inside the page shown
// (Actual and History on Main, the pages of Tools). Focus on a page that
// goes out of sight moves on along the focus chain, to the command line.
void MainForm::pagesByKeyboard() {
    auto step = [this](bool inner, int by) {
        TabControl* t = SSTab1_;
        if (inner)
            t = SSTab1_->page(SSTab1_->currentIndex())->findChild<TabControl*>(QString(), Qt::FindDirectChildrenOnly);
        if (t && t->count() > 0) t->setCurrentIndex((t->currentIndex() + by + t->count()) % t->count());
    };
    const std::pair<QKeySequence, std::pair<bool, int>> keys[] = {
        {QKeySequence(Qt::CTRL | Qt::Key_Tab), {false, 1}},
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab), {false, -1}},
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), {false, -1}},
        {QKeySequence(Qt::CTRL | Qt::Key_PageDown), {true, 1}},
        {QKeySequence(Qt::CTRL | Qt::Key_PageUp), {true, -1}},
    };
    for (const auto& [key, how] : keys) {
        auto* s = new QShortcut(key, this);
        connect(s, &QShortcut::activated, this, [step, how] { step(how.first, how.second); });
    }
}

void MainForm::listenToStatusPanel() {
    status_.listen(client_.statusModel(), findChild<QWidget*>(QStringLiteral("Label11")), [this] { scheduleRefresh(); },
                   [this] { Text1_->setFocus(); });
}

void MainForm::syncStatus() {
    status_.sync(client_.statusModel());
    // While the server echoes, the command line shows dots.
    const auto mode = client_.serverEchoes() ? QLineEdit::Password : QLineEdit::Normal;
    if (Text1_->echoMode() != mode) Text1_->setEchoMode(mode);
}

void MainForm::startTimers() {
    as_timer_ = new QTimer(this);
    as_timer_->setObjectName(QStringLiteral("as_timer"));
    connect(as_timer_, &QTimer::timeout, this, [this] {
        fromOutside(EventGate::kAsTimer, "as_timer_Timer", [this] { client_.as_timer_Timer(); });
    });
    as_timer_->start(1000);

    // Turns changed status cells grey again.
    Timer3_ = new QTimer(this);
    Timer3_->setObjectName(QStringLiteral("Timer3"));
    connect(Timer3_, &QTimer::timeout, this,
            [this] { fromOutside(EventGate::kStatusTimer, "Timer3_Timer", [this] { client_.Timer3_Timer(); }); });
    Timer3_->start(500);

    Queue_ = new QTimer(this);
    Queue_->setObjectName(QStringLiteral("Queue"));
    connect(Queue_, &QTimer::timeout, this, [this] {
        fromOutside(EventGate::kQueueTimer, "Queue_Timer", [this] { Queue_->setInterval(client_.Queue_Timer()); });
    });
    Queue_->start(Sender::kFirstQueueInterval);
}

namespace {

// A key that types into a line: a character, Enter, Backspace or a paste;
// other keys with Ctrl, Alt or Meta stay with the window (Ctrl+C copies).
bool typedText(const QKeyEvent& k) {
    if (k.matches(QKeySequence::Paste)) return true;
    if (k.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    const int key = k.key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Backspace) return true;
    return !k.text().isEmpty() && k.text().front().isPrint();
}

}  // namespace

bool MainForm::eventFilter(QObject* watched, QEvent* e) {
    if (watched == Text1_ && e->type() == QEvent::KeyPress) {
        const auto* k = static_cast<QKeyEvent*>(e);
        const int key = k->key();
        // Ctrl+M is the terminal's carriage return, and ends a line as Enter does.
        const bool ctrlM = key == Qt::Key_M && (k->modifiers() & (Qt::ControlModifier | Qt::AltModifier |
                                                                   Qt::ShiftModifier)) == Qt::ControlModifier;
        if (key == Qt::Key_Return || key == Qt::Key_Enter || ctrlM) {
            Text1_Enter();
            return true;
        }
        if (key == Qt::Key_Escape) guarded("Text1_KeyPress", [&] { client_.Text1_Escape(); });
    } else if (e->type() == QEvent::KeyPress && watched != Text1_ && typedText(*static_cast<QKeyEvent*>(e))) {
        Text1_->setFocus();
        const std::unique_ptr<QEvent> typed(e->clone());
        QCoreApplication::sendEvent(Text1_, typed.get());
        return true;
    }
    return QWidget::eventFilter(watched, e);
}

void MainForm::Text1_Enter() {
    const std::string text = commandLineText(Text1_);
    guarded("Text1_KeyPress", [&] { client_.Text1_Enter(text); });
    // Only now: the box keeps its text while the command runs.
    Text1_->clear();
}

void MainForm::BTN_BULK_Click() {
    // The dialog opens for typing, whichever of its buttons closed it last.
    bulk_->TXT_Bulk->setFocus();
    bulk_->exec();
    focusCommandLine();
    if (!bulk_->BulkResult) return;
    const std::string text = bulk_->commandText();
    guarded("BTN_BULK_Click", [&] { client_.Bulk_Send(text); });
    bulk_->clearText();
}

void MainForm::focusCommandLine() {
    activateWindow();
    Text1_->setFocus();
}

void MainForm::BTN_Flags_Click() {
    flags_->show();
    flags_->raise();
    flags_->activateWindow();
}

void MainForm::s_Connect() {
    fromOutside(EventGate::kEach, "s_Connect", [this] { client_.s_Connect(); });
}

void MainForm::s_DataArrival() {
    if (!fromOutside(EventGate::kData, "s_DataArrival", [this] { client_.s_DataArrival(); }) && socket_)
        socket_->dataEventWaits();
}

void MainForm::s_Close() {
    fromOutside(EventGate::kEach, "s_Close", [this] { client_.s_Close(); });
}

void MainForm::s_Error(int number, const QString& description, long long scode) {
    fromOutside(EventGate::kEach, "s_Error", [this, number, text = toCoreBytes(description), scode] {
        client_.s_Error(number, text, scode);
    });
}

void MainForm::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
    layout_.Form_Resize(width() * kTwipsPerPixel + kNominalFrameWidth,
                        height() * kTwipsPerPixel + kNominalFrameHeight);
    applyLayout();
}

void MainForm::closeEvent(QCloseEvent* e) {
    guarded("Form_Unload", [&] { client_.Form_Unload(); });
    flags_->hide();
    bulk_->hide();
    e->accept();
}

void MainForm::terminate() {
    if (terminated_) return;
    terminated_ = true;
    guarded("Form_Terminate", [&] { client_.Form_Terminate(); });
}

}  // namespace kelpa::qt
