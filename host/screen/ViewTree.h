#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

class DisplayView;
class Slider;

// What the views on a screen are and show, as drives name and report it.
namespace ViewTree {

// The view of that name in or under the given one; of several the one that lies uppermost. Null if there is none.
DisplayView* find(DisplayView& root, const QString& name);

// A label's text, a button's label, the chosen item of a switch or picker; nothing for other views.
std::optional<QString> textOf(const DisplayView& view);
// The name of a label's skin colour; nothing for other views.
std::optional<QString> colourOf(const DisplayView& view);
// The slider with which a finger works a switch; null for other views.
Slider* sliderOf(DisplayView& view);

// The view and all in it: "name", "class", "text", "colour", "items", "position", "buttonColour", "x", "y", "width",
// "height" (in the parent view), "visible", "enabled" (the view's own flags) and "children", lowest first. What a view
// does not have is null.
QJsonObject describe(const DisplayView& root);

}  // namespace ViewTree
