// The controls of the macro editor page.
#pragma once

class QWidget;

namespace kelpa::qt {

void buildMacroPage(QWidget* page);

}  // namespace kelpa::qt
