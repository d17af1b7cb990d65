#include <HelixDash/views/DisplayImage.h>

#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QStringList>
#include <QSvgRenderer>
#include <QtWidgets/qdrawutil.h>

namespace {

QStringList& searchPaths() {
    static QStringList paths{QStringLiteral(":/HelixDash/skin/images")};
    return paths;
}

QStringList fileNames(const QString& name) {
    QStringList names{name};
    if (name.endsWith(".png"))
        names.append(name.chopped(4) + ".svg");
    return names;
}

QString findFile(const QString& name) {
    for (const QString& path : searchPaths()) {
        for (const QString& fileName : fileNames(name)) {
            const QString file = path + '/' + fileName;
            if (QFile::exists(file))
                return file;
        }
    }
    return {};
}

QSize readSize(const QString& path) {
    return path.endsWith(".svg") ? QSvgRenderer(path).defaultSize() : QImageReader(path).size();
}

}  // namespace

void DisplayImage::addSearchPath(const QString& path) {
    searchPaths().removeAll(path);
    searchPaths().prepend(path);
}

DisplayImage::DisplayImage(const QString& name) : mName(name), mPath(findFile(name)) {
    if (!mPath.isEmpty())
        mSize = readSize(mPath);
    if (isNull())
        qWarning("no image %s", qPrintable(name));
}

QPixmap DisplayImage::pixmap(const QSize& size) const {
    if (isNull())
        return {};
    const QSize wanted = size.isValid() ? size : mSize;
    if (!mPath.endsWith(".svg"))
        return QPixmap(mPath).scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPixmap drawn(wanted);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    QSvgRenderer(mPath).render(&painter, QRectF(QPointF(), QSizeF(wanted)));
    return drawn;
}

void DisplayImage::paint(QPainter* painter, const QRect& place, int corner) const {
    if (!isNull())
        qDrawBorderPixmap(painter, place, QMargins(corner, corner, corner, corner), pixmap());
}
