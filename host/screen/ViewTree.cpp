#include "host/screen/ViewTree.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SwitchControl.h>

#include <QJsonArray>

namespace {

// The views nearest to the widget, in their stacking order, lowest first. Widgets that are no views are looked through.
void collectViews(const QWidget& widget, QList<DisplayView*>& views) {
    for (QObject* child : widget.children()) {
        if (auto* view = qobject_cast<DisplayView*>(child))
            views << view;
        else if (const auto* other = qobject_cast<QWidget*>(child))
            collectViews(*other, views);
    }
}

QList<DisplayView*> viewsIn(const QWidget& widget) {
    QList<DisplayView*> views;
    collectViews(widget, views);
    return views;
}

const Slider* switchSlider(const DisplayView& view) {
    if (const auto* control = qobject_cast<const SwitchControl*>(&view))
        return control->slider();
    return qobject_cast<const Slider*>(&view);
}

QJsonValue orNull(const std::optional<QString>& text) {
    return text ? QJsonValue(*text) : QJsonValue();
}

QJsonValue itemsOf(const DisplayView& view) {
    if (const auto* picker = qobject_cast<const DropDownPicker*>(&view))
        return QJsonArray::fromStringList(picker->choices());
    const Slider* slider = switchSlider(view);
    return slider ? QJsonArray::fromStringList(slider->items()) : QJsonValue();
}

QJsonValue positionOf(const DisplayView& view) {
    if (const auto* picker = qobject_cast<const DropDownPicker*>(&view))
        return picker->choice();
    const Slider* slider = switchSlider(view);
    return slider ? QJsonValue(slider->value()) : QJsonValue();
}

QJsonValue buttonColourOf(const DisplayView& view) {
    const auto* button = qobject_cast<const ButtonView*>(&view);
    return button ? QJsonValue(button->buttonColor()) : QJsonValue();
}

QJsonObject describeIn(const DisplayView& view, const QPoint& place) {
    QJsonArray children;
    for (const DisplayView* child : viewsIn(view))
        children << describeIn(*child, child->mapTo(&view, QPoint()));
    return {
        {QStringLiteral("name"), view.viewName()},
        {QStringLiteral("class"), QString::fromLatin1(view.metaObject()->className())},
        {QStringLiteral("text"), orNull(ViewTree::textOf(view))},
        {QStringLiteral("colour"), orNull(ViewTree::colourOf(view))},
        {QStringLiteral("items"), itemsOf(view)},
        {QStringLiteral("position"), positionOf(view)},
        {QStringLiteral("buttonColour"), buttonColourOf(view)},
        {QStringLiteral("x"), place.x()},
        {QStringLiteral("y"), place.y()},
        {QStringLiteral("width"), view.width()},
        {QStringLiteral("height"), view.height()},
        {QStringLiteral("visible"), view.isVisible()},
        {QStringLiteral("enabled"), view.isEnabled()},
        {QStringLiteral("children"), children},
    };
}

}  // namespace

DisplayView* ViewTree::find(DisplayView& root, const QString& name) {
    const QList<DisplayView*> views = viewsIn(root);
    for (auto view = views.crbegin(); view != views.crend(); ++view) {
        if (DisplayView* found = find(**view, name))
            return found;
    }
    return root.viewName() == name ? &root : nullptr;
}

std::optional<QString> ViewTree::textOf(const DisplayView& view) {
    if (const auto* label = qobject_cast<const LabelView*>(&view))
        return label->text();
    if (const auto* button = qobject_cast<const ButtonView*>(&view))
        return button->label();
    if (const auto* picker = qobject_cast<const DropDownPicker*>(&view))
        return picker->choices().value(picker->choice());
    if (const Slider* slider = switchSlider(view); slider && !slider->items().isEmpty())
        return slider->items().value(qRound(slider->value()));
    return std::nullopt;
}

std::optional<QString> ViewTree::colourOf(const DisplayView& view) {
    const auto* label = qobject_cast<const LabelView*>(&view);
    return label ? std::optional(label->skinColor()) : std::nullopt;
}

Slider* ViewTree::sliderOf(DisplayView& view) {
    return const_cast<Slider*>(switchSlider(view));
}

QJsonObject ViewTree::describe(const DisplayView& root) {
    return describeIn(root, root.pos());
}
