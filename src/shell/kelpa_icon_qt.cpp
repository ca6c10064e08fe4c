#include "shell/kelpa_icon_qt.h"

#include <QPainter>
#include <QSvgRenderer>

#include "kelpa_icon_svg.h"

namespace kelpa::qt {

QPixmap kelpaPicture(int width, int height) {
    QSvgRenderer svg(QByteArray::fromRawData(kKelpaIconSvg, static_cast<qsizetype>(sizeof kKelpaIconSvg - 1)));
    QPixmap picture(width, height);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter);
    painter.end();
    return picture;
}

QIcon kelpaIcon() {
    QIcon icon;
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) icon.addPixmap(kelpaPicture(size, size));
    return icon;
}

}  // namespace kelpa::qt
