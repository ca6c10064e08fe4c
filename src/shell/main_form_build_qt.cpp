// The tree of controls of the main window, with captions, fonts and colours.
// Places come from FormLayout, except for controls that never move.
#include <limits>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "command/macro_page_qt.h"
#include "history/history_page_qt.h"
#include "output/output_view_qt.h"
#include "shell/main_form_qt.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"
#include "triggers/trigger_page_qt.h"

namespace kelpa::qt {

namespace {


QLineEdit* textBox(const char* name, const std::string& text, QWidget* parent) {
    auto* t = new QLineEdit(toQString(text), parent);
    t->setObjectName(QString::fromLatin1(name));
    oneLineBox(t);
    return t;
}

QCheckBox* checkBox(const char* name, const char* caption, bool on, QWidget* parent) {
    auto* c = new CheckBox(QString::fromLatin1(caption), parent);
    c->setObjectName(QString::fromLatin1(name));
    c->setChecked(on);
    // Check boxes paint the button colour behind their caption.
    setBackground(c, c->palette().color(QPalette::Button));
    return c;
}

}  // namespace

void MainForm::buildLeftColumn() {
    CB_Connections_ = new DropDownList(this);
    CB_Connections_->setObjectName(QStringLiteral("CB_Connections"));
    CB_Connections_->setEditable(false);
    Site_ = textBox("Site", client_.connectionBar().Site, this);
    PPort_ = textBox("PPort", client_.connectionBar().PPort, this);
    SPort_ = textBox("SPort", client_.connectionBar().SPort, this);
    CMD_CONNECT_ = commandButton("CMD_CONNECT", "C&onnect", this);
    CMD_DISCONNECT_ = commandButton("CMD_DISCONNECT", "&Disconnect", this);
    CMD_DISCONNECT_->setEnabled(false);
    status_.build(this);
}

void MainForm::buildWorkArea() {
    PlayGround_ = new QWidget(this);
    PlayGround_->setObjectName(QStringLiteral("PlayGround"));

    SSTab1_ = new TabControl(QStringLiteral("SSTab1"), QColor(64, 64, 64), 7, PlayGround_);
    QWidget* main = SSTab1_->addPage(QStringLiteral("Main"));
    SSTab2_ = new TabControl(QStringLiteral("SSTab2"), QColor(64, 64, 64), 2, main);
    makeView(kMainWindow, SSTab2_->addPage(QStringLiteral("Actual")));
    // A history page can be taller than the view: its top line, the one the
    // keys and Seek go by, stays in sight, except on the page at the end of
    // the run, whose newest line does.
    OutputView* histT = makeView(kHistT, SSTab2_->addPage(QStringLiteral("History")));
    histT->setShowsFromTop([this] { return !client_.historyViews().pager.showsTheEnd(); });
    // Its keys page the history: Tab reaches it, so a player without a
    // mouse can read back.
    histT->setFocusPolicy(Qt::StrongFocus);
    buildSystemPage(SSTab1_->addPage(QStringLiteral("System")));
    for (int i = 0; i < 4; ++i) makeView(kCustom1 + i, SSTab1_->addPage(QStringLiteral("Custom %1").arg(i + 1)));
    buildToolsPage(SSTab1_->addPage(QStringLiteral("Tools")));

    // Below the buttons, so that it never covers them.
    auto* label11 = new QLabel(PlayGround_);
    label11->setObjectName(QStringLiteral("Label11"));
    Text1_ = new QLineEdit(PlayGround_);
    Text1_->setObjectName(QStringLiteral("Text1"));
    Text1_->setFont(monospaceFont(9.75));
    // A command line has no length limit (Qt's default stops at 32,767).
    Text1_->setMaxLength(std::numeric_limits<int>::max());
    typesNoAltChords(Text1_);
    BTN_BULK_ = commandButton("BTN_BULK", "&Bulk", PlayGround_);
    BTN_Flags_ = commandButton("BTN_Flags", "&Flags", PlayGround_);
}

void MainForm::buildSystemPage(QWidget* page) {
    makeView(kDebugWindow, page);
    DebugInfo_ = checkBox("DebugInfo", "&Debug", false, page);
    IG_ = checkBox("IG", "Graphics", true, page);
    CT_ = checkBox("CT", "Cleaner Text", true, page);
    commandButton("CMD_SaveConnection", "&Connections", page);
    commandButton("CMD_About", "&About", page);
}

void MainForm::buildToolsPage(QWidget* page) {
    ToolsTabs_ = new TabControl(QStringLiteral("ToolsTabs"), palette().color(QPalette::Button), 3, page);
    QWidget* history = ToolsTabs_->addPage(QStringLiteral("History"));
    OutputView* histView = makeView(kHistView, history);
    // Tab reaches the list of a Filter and a loaded day, to scroll it by key.
    histView->setFocusPolicy(Qt::StrongFocus);
    historyPage_ = new HistoryPage({history, histView, views_[kHistT], SSTab1_, SSTab2_}, client_.historyViews(),
                                   [this](const char* handler, const std::function<void()>& call) {
                                       guardedCall(handler, call);
                                   },
                                   [this] { return gate_.busy(); });
    triggerPage_ = new TriggerPage(ToolsTabs_->addPage(QStringLiteral("Triggers")), client_.triggerEditor(),
                                   [this](const char* handler, const std::function<void()>& call) {
                                       guardedCall(handler, call);
                                   });
    macroPage_ = new MacroPage(client_.macroEditor(),
                               [this](const char* handler, const std::function<void()>& call) {
                                   guardedCall(handler, call);
                               },
                               ToolsTabs_->addPage(QStringLiteral("Macros")));
}

OutputView* MainForm::makeView(int win, QWidget* parent) {
    auto* v = new OutputView(client_.window(win), windowInfo(win), parent);
    views_[static_cast<std::size_t>(win)] = v;
    // Typing into a window that was clicked goes to the command line; the
    // history page takes its keys itself.
    if (win != kHistT) v->installEventFilter(this);
    return v;
}

void MainForm::collectLaidOutControls() {
    for (const auto& [name, rect] : layout_.all()) {
        QWidget* w = findChild<QWidget*>(QString::fromStdString(name));
        if (w) laidOut_[name] = w;
    }
}

void MainForm::applyLayout() {
    for (const auto& [name, w] : laidOut_) w->setGeometry(pxRect(layout_[name]));
}

}  // namespace kelpa::qt
