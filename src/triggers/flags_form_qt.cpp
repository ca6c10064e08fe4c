#include "triggers/flags_form_qt.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSignalBlocker>

#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

FlagsForm::FlagsForm(const FlagTable& flags, std::function<void(int, bool)> setFlag, QWidget* parent)
    : QDialog(parent, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      BTN_Close(new CommandButton(QStringLiteral("Close"), this)), flags_(flags),
      setFlag_(std::move(setFlag)) {
    setObjectName(QStringLiteral("FlagsForm"));
    setWindowTitle(QStringLiteral("Flags"));
    setModal(false);
    setFont(formFont());
    setFixedSize(px(12300), px(7290));
    for (int i = 0; i < FlagTable::kCount; ++i) {
        auto* box = new CheckBox(this);
        box->setObjectName(QStringLiteral("TRGFLAG(%1)").arg(i));
        box->setGeometry(pxRect(120 + (i % 6) * 2040, 120 + (i / 6) * 480, 1935, 375));
        // A click sets the flag at once; there is nothing to confirm.
        connect(box, &QCheckBox::clicked, this, [this, i](bool on) { setFlag_(i, on); });
        boxes_[static_cast<std::size_t>(i)] = box;
    }
    BTN_Close->setObjectName(QStringLiteral("BTN_Close"));
    BTN_Close->setGeometry(pxRect(10920, 6810, 1215, 375));
    // Close and Escape only hide: the check boxes keep their state.
    connect(BTN_Close, &QPushButton::clicked, this, &QDialog::reject);
    sync();
}

void FlagsForm::showEvent(QShowEvent* e) {
    // Opens on a flag, the one the player was on if any: Space then ticks a
    // flag rather than closing the dialog.
    QWidget* on = qobject_cast<QCheckBox*>(focusWidget()) ? focusWidget() : boxes_.front();
    on->setFocus(Qt::TabFocusReason);
    // Its focus frame shows at once, as after a Tab: the player sees which
    // flag Space will tick.
    setAttribute(Qt::WA_KeyboardFocusChange);
    QDialog::showEvent(e);
}

void FlagsForm::sync() {
    if (flags_.revision == shownRevision_) return;
    shownRevision_ = flags_.revision;
    for (int i = 0; i < FlagTable::kCount; ++i) {
        const auto k = static_cast<std::size_t>(i);
        QCheckBox* box = boxes_[k];
        const QSignalBlocker block(box);
        box->setText(toQString(flags_.caption[k]));
        box->setChecked(flags_.value[k]);
    }
}

}  // namespace kelpa::qt
