#pragma once

#include <QWidget>

class Screen;

// The window on a desk: the touchscreen, and the console beside it if there is one. UI thread.
class HostWindow : public QWidget {
    Q_OBJECT
public:
    // Takes over both; the console may be null.
    HostWindow(Screen* screen, QWidget* console);

signals:
    // A person has closed it.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
};
