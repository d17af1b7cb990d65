#pragma once

// A picture on the screen, as large as the picture times its scale. Touches go through it to what lies below.
//
//     auto* wheel = new ImageView(popupContent);
//     wheel->setImage(DisplayImage("NVH/nvh_stw.png"));

#include <HelixDash/views/DisplayImage.h>
#include <HelixDash/views/DisplayView.h>

class HELIXDASH_EXPORT ImageView : public DisplayView {
    Q_OBJECT

public:
    explicit ImageView(DisplayView* parent = nullptr);
    ImageView(const DisplayImage& image, double scale, DisplayView* parent = nullptr);

    const DisplayImage& image() const { return mImage; }
    void setImage(const DisplayImage& image);

    double scale() const { return mScale; }
    // A scale that is not above 0 is ignored.
    void setScale(double scale);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void fitToImage();

    DisplayImage mImage;
    double mScale = 1.0;
};
