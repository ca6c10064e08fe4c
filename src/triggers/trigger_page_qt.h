// The controls of the trigger editor page.
#pragma once

class QWidget;

namespace kelpa::qt {

void buildTriggerPage(QWidget* page);

}  // namespace kelpa::qt
