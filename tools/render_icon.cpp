// Renders the icon's SVG to square PNGs for the hicolor theme, at build time:
// render_icon <svg> <output folder> <size>...
// writes <output folder>/<size>x<size>/apps/kelpa.png for each size.
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: render_icon <svg> <folder> <size>...\n");
        return 2;
    }
    QSvgRenderer svg{QString::fromLocal8Bit(argv[1])};
    if (!svg.isValid()) {
        std::fprintf(stderr, "render_icon: cannot read %s\n", argv[1]);
        return 1;
    }
    for (int i = 3; i < argc; ++i) {
        const int size = QString::fromLatin1(argv[i]).toInt();
        if (size <= 0) return 2;
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        svg.render(&painter);
        painter.end();
        const QString folder = QStringLiteral("%1/%2x%2/apps").arg(QString::fromLocal8Bit(argv[2])).arg(size);
        if (!QDir().mkpath(folder) || !image.save(folder + QStringLiteral("/kelpa.png"))) {
            std::fprintf(stderr, "render_icon: cannot write into %s\n", qPrintable(folder));
            return 1;
        }
    }
    return 0;
}
