#pragma once

class DisplayView;
class NVHAppView;
class Screen;
struct LayoutRow;

// Makes one widget and puts it into its member of the screen; its release calls its slot of the view.
DisplayView* buildWidget(NVHAppView& view, Screen& screen, const LayoutRow& row);

// Makes all widgets of the full recorder, once, and lays out the columns at the sides.
void buildScreen(NVHAppView& view, Screen& screen);

// Lays out the centre column between the status labels and what lies below it, which has its place already.
void LayoutCentreButtons(Screen& screen);
