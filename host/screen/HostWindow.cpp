#include "host/screen/HostWindow.h"

#include "host/screen/Screen.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>

HostWindow::HostWindow(Screen* screen, QWidget* console) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    // Where there are no window managers, nobody resizes the window or wants to hear of limits.
    const QStringList bare = {QStringLiteral("offscreen"), QStringLiteral("vnc")};
    layout->setSizeConstraint(bare.contains(QGuiApplication::platformName()) ? QLayout::SetNoConstraint
                                                                             : QLayout::SetFixedSize);
    layout->addWidget(screen);
    if (console)
        layout->addWidget(console);
    resize(sizeHint());
}

void HostWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    emit closed();
}
