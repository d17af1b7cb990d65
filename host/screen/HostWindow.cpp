#include "host/screen/HostWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>

HostWindow::HostWindow(QWidget* console) : mScreen(new Screen) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    // Where there are no window managers, nobody resizes the window or wants to hear of limits.
    const QStringList bare = {QStringLiteral("offscreen"), QStringLiteral("vnc")};
    layout->setSizeConstraint(bare.contains(QGuiApplication::platformName()) ? QLayout::SetNoConstraint
                                                                             : QLayout::SetFixedSize);
    layout->addWidget(mScreen);
    if (console) {
        console->setFixedHeight(mScreen->height());
        layout->addWidget(console);
    }
    resize(sizeHint());
}

void HostWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    emit closed();
}
