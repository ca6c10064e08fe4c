// Kelpa's own picture, drawn from the SVG in data/ that is built into the
// program.
#pragma once

#include <QIcon>
#include <QPixmap>

namespace kelpa::qt {

// The window icon, in the usual sizes.
QIcon kelpaIcon();
// The picture at a given size in pixels.
QPixmap kelpaPicture(int width, int height);

}  // namespace kelpa::qt
