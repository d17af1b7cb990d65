#pragma once

#include "nvh/ui/ScreenWidgets.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <QStringList>

#include <span>
#include <variant>

class NVHAppView;

// One widget of the screen, as data: its kind follows from the member that holds it, its place and look from the rest.
struct LayoutRow {
    // The member of the screen that holds it.
    using Member = std::variant<
        LabelView * ScreenWidgets::*, ButtonView * ScreenWidgets::*, BrakesAndDVControllableButton * ScreenWidgets::*,
        SpinnerView * ScreenWidgets::*, SlideSwitch * ScreenWidgets::*, VertSlideSwitch * ScreenWidgets::*,
        SwitchControl * ScreenWidgets::*, DropDownPicker * ScreenWidgets::*, ScrollableView * ScreenWidgets::*>;

    // A switch's or picker's texts.
    struct Items {
        // The texts, which stay where they are.
        std::span<const char* const> texts;

        // None, or those of an array.
        constexpr Items() = default;
        template <int size>
        constexpr Items(const char* const (&items)[size]) : texts(items) {}

        // As the widgets take them.
        QStringList list() const;
    };

    const char* name;        // by which the view is found
    Member member;           // where it is kept
    const char* text = "";   // of a label or button
    Items items = {};        // of a switch or picker
    const char* style = "";  // the framework's; none: as the widget comes
    // Pixels from the parent's top left corner; a size of 0 is as the style or the text wants it.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    // At first.
    bool isShown = true;
    bool isEnabled = true;
    // The vehicle signal that works the widget; none: a finger alone does.
    const VehicleSignals::Signal<BoolDataValue>* pressedBy = nullptr;
    const VehicleSignals::Signal<IntDataValue>* movedBy = nullptr;
    bool isToggle = false;      // of a button
    bool isHorizontal = false;  // of the test type switch
    // The view that it lies in; none: the screen.
    DisplayView* (*parent)(const ScreenWidgets& widgets) = nullptr;
    // The slot that a button's release calls; none for what is no button.
    void (NVHAppView::*released)() = nullptr;
};

// What the full recorder is built of, in the order in which it is made, which is the order in which the widgets lie
// above each other.
std::span<const LayoutRow> layoutRows();

// The list of static tests' mode has this test type switch in place of the other.
const LayoutRow& horizontalTestTypeRow();
