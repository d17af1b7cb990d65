#include "host/drive/GestureSteps.h"

#include "host/screen/Finger.h"
#include "host/screen/Screen.h"
#include "host/screen/ViewTree.h"

#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SwitchControl.h>

#include <QTimer>

namespace {

constexpr int kLookAgainMs = 10;

// The position of an item; nothing if the list does not have it.
std::optional<int> positionOf(const QStringList& items, const ItemChoice& choice) {
    const int* number = std::get_if<int>(&choice);
    const int position = number ? *number : int(items.indexOf(std::get<QString>(choice)));
    return position >= 0 && position < items.size() ? std::optional(position) : std::nullopt;
}

QString nameOf(const ItemChoice& choice) {
    const int* number = std::get_if<int>(&choice);
    return number ? QStringLiteral("position %1").arg(*number)
                  : QStringLiteral("item \"%1\"").arg(std::get<QString>(choice));
}

QPoint onWindow(const DisplayView& view, QPoint place) {
    return view.mapTo(view.window(), place);
}

QString listed(const QStringList& items) {
    return QLatin1Char('"') + items.join(QStringLiteral("\", \"")) + QLatin1Char('"');
}

}  // namespace

GestureRun::GestureRun(DriveStage& stage) : mStage(stage) {
    connect(
        &mStage.finger, &Finger::lifted, this, [this] { lifted(); }, Qt::QueuedConnection);
}

void GestureRun::lifted() {
    emit held();
}

DisplayView* GestureRun::find(const QString& name) {
    DisplayView* view = ViewTree::find(mStage.screen, name);
    if (!view)
        emit failed(QStringLiteral("there is no view %1").arg(name));
    return view;
}

void GestureRun::tap(const DisplayView& view, double holdSeconds) {
    mStage.finger.tap(onWindow(view, view.rect().center()), int(holdSeconds * 1000.0));
}

void GestureRun::slide(const Slider& slider, const ItemChoice& to, const QString& name) {
    const std::optional<int> position = positionOf(slider.items(), to);
    if (!position) {
        emit failed(QStringLiteral("%1 has no %2, only %3").arg(name, nameOf(to), listed(slider.items())));
        return;
    }
    mStage.finger.drag(onWindow(slider, slider.thumbPlace(slider.value()).center()),
                       onWindow(slider, slider.thumbPlace(*position).center()));
}

void TouchRun::start() {
    if (const DisplayView* view = find(mStep.view))
        tap(*view, mStep.hold);
}

void SlideRun::start() {
    DisplayView* view = find(mStep.view);
    if (!view)
        return;
    if (const Slider* slider = ViewTree::sliderOf(*view))
        slide(*slider, mStep.to, mStep.view);
    else
        emit failed(QStringLiteral("%1 is no switch").arg(mStep.view));
}

void PickRun::start() {
    DisplayView* view = find(mStep.view);
    if (!view)
        return;
    mPicker = qobject_cast<DropDownPicker*>(view);
    if (!mPicker) {
        emit failed(QStringLiteral("%1 is no picker").arg(mStep.view));
    } else if (!mPicker->choices().contains(mStep.choice)) {
        emit failed(QStringLiteral("%1 has no choice \"%2\", only %3")
                        .arg(mStep.view, mStep.choice, listed(mPicker->choices())));
    } else {
        tap(*mPicker, 0.0);
    }
}

void PickRun::lifted() {
    // A picker that is hidden, disabled or covered has not opened.
    ScrollableView* list = mPicker && !mChosen ? mPicker->list() : nullptr;
    if (!list) {
        emit held();
        return;
    }
    mChosen = true;
    const DisplayView* row = list->contentView()->childViews().at(int(mPicker->choices().indexOf(mStep.choice)));
    list->scrollToShow(row->top(), row->height());
    tap(*row, 0.0);
}

void MarkRun::start() {
    DisplayView* view = find(mStep.view);
    if (!view)
        return;
    auto* table = qobject_cast<TableView*>(view);
    if (table && mStep.row < table->rowCount() && !table->cellAt(mStep.row)) {
        // A long table makes its rows by and by.
        QTimer::singleShot(kLookAgainMs, this, &MarkRun::start);
        return;
    }
    DisplayView* cell = table ? table->cellAt(mStep.row) : nullptr;
    const auto* control = cell ? cell->findChild<SwitchControl*>() : nullptr;
    if (!table)
        emit failed(QStringLiteral("%1 is no table").arg(mStep.view));
    else if (!cell)
        emit failed(QStringLiteral("%1 has %2 rows").arg(mStep.view).arg(table->rowCount()));
    else if (!control)
        emit failed(QStringLiteral("row %1 of %2 has no switch").arg(mStep.row).arg(mStep.view));
    else
        slideRow(*table, *control);
}

void MarkRun::slideRow(TableView& table, const SwitchControl& control) {
    const QWidget& widget = table;
    if (widget.isVisible() && widget.isEnabled())
        table.scrollToRow(mStep.row);
    // At the place of a row that cannot be seen, a finger would work something else.
    const QRect place(control.mapTo(&table, QPoint()), control.size());
    if (widget.isVisible() && table.visiblePart().contains(place.center()))
        slide(*control.slider(), mStep.to, QStringLiteral("row %1 of %2").arg(mStep.row).arg(mStep.view));
    else
        emit held();
}
