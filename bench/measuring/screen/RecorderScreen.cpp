#include "bench/measuring/screen/RecorderScreen.h"

#include "host/screen/PluginLoader.h"

#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/LabelView.h>

#include <QCoreApplication>

bool RecorderScreen::load(const QString& plugin, const QString& appDirectory, QString* error) {
    mInfo.name = PluginLoader::applicationName(plugin);
    mInfo.directory = appDirectory;
    mInfo.titleArea = &mScreen.titleArea();
    return PluginLoader::load(plugin, mInfo, mScreen.applicationArea(), error) != nullptr;
}

void RecorderScreen::showFirstFrame() {
    mScreen.show(true);
    mScreen.repaint();
    QCoreApplication::processEvents();
}

void RecorderScreen::changeMode(int mode) {
    QMetaObject::invokeMethod(find("NVHWrapper"), "appModeChanged", Q_ARG(int, mode));
    mScreen.repaint();
    QCoreApplication::processEvents();
}

void RecorderScreen::call(const char* slot) {
    QMetaObject::invokeMethod(find("NVHAppView"), slot);
}

QString RecorderScreen::labelText(const char* name) const {
    const auto* label = mScreen.findChild<const LabelView*>(QLatin1String(name));
    return label ? label->text() : QString();
}

int RecorderScreen::rowCount(const char* name) const {
    const auto* table = mScreen.findChild<const TableView*>(QLatin1String(name));
    return table ? table->rowCount() : 0;
}

bool RecorderScreen::rowsAreReady(const char* name) const {
    const auto* table = mScreen.findChild<const TableView*>(QLatin1String(name));
    return table && table->readyRows() == table->rowCount();
}

QObject* RecorderScreen::find(const char* className) const {
    for (QObject* view : mScreen.findChildren<QObject*>()) {
        if (qstrcmp(view->metaObject()->className(), className) == 0)
            return view;
    }
    return nullptr;
}
