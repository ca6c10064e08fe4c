// The controls of the history browser page, beside its view HistView.
#pragma once

class QWidget;

namespace kelpa::qt {

// Places come from the form's layout, which follows the window's size.
void buildHistoryPage(QWidget* page);

}  // namespace kelpa::qt
