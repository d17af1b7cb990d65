#include <HelixDash/views/ImageView.h>

#include <QPainter>

ImageView::ImageView(DisplayView* parent) : ImageView(DisplayImage(), 1.0, parent) {}

ImageView::ImageView(const DisplayImage& image, double scale, DisplayView* parent) : DisplayView(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setScale(scale);
    setImage(image);
}

void ImageView::setImage(const DisplayImage& image) {
    mImage = image;
    fitToImage();
}

void ImageView::setScale(double scale) {
    if (scale <= 0)
        return;
    mScale = scale;
    fitToImage();
}

void ImageView::fitToImage() {
    resizeSilently(qRound(mImage.width() * mScale), qRound(mImage.height() * mScale));
    update();
}

void ImageView::paintEvent(QPaintEvent* event) {
    DisplayView::paintEvent(event);
    if (!mImage.isNull())
        QPainter(this).drawPixmap(0, 0, mImage.pixmap(size()));
}
