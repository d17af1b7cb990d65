#pragma once

// Makes views that consist of several.

#include <HelixDash/Export.h>

#include <QString>

class DisplayView;
class ScrollableView;

class HELIXDASH_EXPORT ViewFactory {
public:
    // A panel whose content scrolls, in a skin colour; put views into its contentView(). It belongs to the parent.
    static ScrollableView* createScrollableView(DisplayView* parent, const QString& backgroundColor = {});
};
