#pragma once

#include "host/screen/Screen.h"

// The window on a desk: the touchscreen, and the console beside it if there is one. UI thread.
class HostWindow : public QWidget {
    Q_OBJECT
public:
    // Takes over the console, which may be null.
    explicit HostWindow(QWidget* console);

    Screen& screen() { return *mScreen; }

signals:
    // A person has closed it.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    Screen* mScreen;
};
