// The flags dialog: one check box per flag of the core's table, both ways.
#pragma once

#include <QDialog>

#include <array>
#include <cstdint>
#include <functional>

#include "triggers/flag_table.h"

class QCheckBox;
class QPushButton;

namespace kelpa::qt {

class FlagsForm : public QDialog {
    Q_OBJECT
public:
    // `setFlag` carries a click to the core.
    FlagsForm(const FlagTable& flags, std::function<void(int, bool)> setFlag, QWidget* parent = nullptr);

    // Shows the table's values and captions if they changed.
    void sync();

    QCheckBox* TRGFLAG(int i) const { return boxes_.at(static_cast<std::size_t>(i)); }
    QPushButton* BTN_Close;

protected:
    void showEvent(QShowEvent* e) override;

private:
    const FlagTable& flags_;
    std::function<void(int, bool)> setFlag_;
    std::array<QCheckBox*, FlagTable::kCount> boxes_{};
    std::uint64_t shownRevision_ = ~std::uint64_t{0};
};

}  // namespace kelpa::qt
