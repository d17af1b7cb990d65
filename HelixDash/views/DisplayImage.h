#pragma once

// A picture by name.
//
//     DisplayImage::addSearchPath(appInfo->directory);
//     DisplayImage wheel("NVH/nvh_stw.png");
//
// The name is looked for in the added directories, the last added one first, and then in the skin's images. A ".png"
// name is also answered by a drawing of the same name with the ending ".svg", drawn sharp in any size. UI thread only.

#include <HelixDash/Export.h>

#include <QPixmap>
#include <QString>

class HELIXDASH_EXPORT DisplayImage {
public:
    DisplayImage() = default;
    // A name that is found nowhere, or not readable, gives an image that isNull(), and a warning in the log.
    explicit DisplayImage(const QString& name);

    // A directory or resource path whose files are named as applications ask for them. Adding one again moves it to the
    // front.
    static void addSearchPath(const QString& path);

    QString name() const { return mName; }
    bool isNull() const { return mSize.isEmpty(); }
    // In pixels at scale 1.
    QSize size() const { return mSize; }
    int width() const { return mSize.width(); }
    int height() const { return mSize.height(); }

    // Drawn at that size; an invalid size means size().
    QPixmap pixmap(const QSize& size = {}) const;

    // Drawn into a place of another size: corners keep theirs, edges and middle stretch.
    void paint(QPainter* painter, const QRect& place, int corner) const;

private:
    QString mName;
    QString mPath;
    QSize mSize;
};
