#pragma once

// Text on the screen.
//
//     auto* status = new LabelView("Waiting", this);
//     status->setStyle("SettingsMainLabel");
//     status->setSkinColor("battery/green");
//     status->move(445, 130);
//
// The label is as large as its text and grows and shrinks with it until it is given a size. Growing, it stays inside
// its parent's right edge and its own maximumWidth(): what is wider is drawn smaller, and wrapped below 16 px. A label
// with a size of its own wraps its text in it and draws it smaller where it would not fit; only what does not fit at 12
// px ends in an ellipsis. resizeToFit() gives it a width and the height that its text needs there in full size.
//
// The text is always plain text, whatever it contains; line ends break the line. A text of some pages (beyond 1000
// letters) breaks at line ends and blanks alone; text() stays whole however it is painted. Touches go through a label
// to what lies below it.

#include <HelixDash/views/DisplayView.h>

#include <memory>
#include <optional>

class TextBlock;

class HELIXDASH_EXPORT LabelView : public DisplayView {
    Q_OBJECT

public:
    explicit LabelView(DisplayView* parent = nullptr);
    explicit LabelView(const QString& text, DisplayView* parent = nullptr);
    ~LabelView() override;

    QString text() const { return mText; }
    void setText(const QString& text);

    // The text's colour, a name from the skin.
    QString skinColor() const { return mSkinColor; }
    void setSkinColor(const QString& name);

    // Pixels; setFont() chooses the whole font.
    int fontSize() const { return font().pixelSize(); }
    void setFontSize(int px);

    // Wraps the text at that width and makes the label as high as that needs. A width below 1 is taken as 1.
    void resizeToFit(int width);

    QSize sizeHint() const override;

protected:
    void styleChanged() override;
    void sizeChosen() override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Wrapped {
        QFont small;
        int limit = 0;
        int height = 0;
    };

    // Text or font are others.
    void lookChanged();
    // Drops what was laid out; without a size of its own the label takes the one that it needs.
    void grow();
    QSize neededSize() const;
    QSize textSize(int limit) const;
    int wrappedHeight(const QFont& small, int limit) const;
    int padding() const;
    QRect textPlace() const;
    const TextBlock& block() const;

    QString mText;
    QString mSkinColor = QStringLiteral("black");
    bool mHasSize = false;
    mutable std::optional<QSize> mNatural;      // of the text in one line or as its line ends break it
    mutable std::optional<Wrapped> mWrapped;    // of the text that was too wide for its room last time
    mutable std::unique_ptr<TextBlock> mBlock;  // laid out on demand, dropped when text, font or size change
};
