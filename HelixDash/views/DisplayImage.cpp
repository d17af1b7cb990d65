#include <HelixDash/views/DisplayImage.h>

#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QPixmapCache>
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

QPixmap draw(const QString& path, const QSize& size) {
    if (!path.endsWith(".svg"))
        return QPixmap(path).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPixmap drawn(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    QSvgRenderer(path).render(&painter, QRectF(QPointF(), QSizeF(size)));
    return drawn;
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
    const QString key = QString("%1@%2x%3").arg(mPath).arg(wanted.width()).arg(wanted.height());
    QPixmap drawn;
    if (!QPixmapCache::find(key, &drawn)) {
        drawn = draw(mPath, wanted);
        QPixmapCache::insert(key, drawn);
    }
    return drawn;
}

void DisplayImage::paint(QPainter* painter, const QRect& place, int corner) const {
    if (!isNull())
        qDrawBorderPixmap(painter, place, QMargins(corner, corner, corner, corner), pixmap());
}
