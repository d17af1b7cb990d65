#include "host/screen/PluginLoader.h"

#include <HelixDash/services/AppInfo.h>
#include <HelixDash/views/DisplayView.h>

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>
#include <exception>

namespace {

constexpr char kEntry[] = "LoadPlugin";
using Entry = DisplayView* (*)(AppInfo*, DisplayView*);

DisplayView* refuse(QString* error, const QString& reason) {
    *error = reason;
    return nullptr;
}

// The dynamic linker's own words; they begin with the path where it is the file that is at fault.
QString linkerReason(const QString& path) {
    const QString reason = QString::fromLocal8Bit(::dlerror());
    return reason.startsWith(path) ? reason : path + QStringLiteral(": ") + reason;
}

// An entry that throws must not take the host with it: the failure has to be told.
DisplayView* call(Entry entry, AppInfo& info, DisplayView& parent, QString& failure) {
    try {
        DisplayView* view = entry(&info, &parent);
        if (!view)
            failure = QStringLiteral("gave no view");
        return view;
    } catch (const std::exception& exception) {
        failure = QStringLiteral("failed: ") + QString::fromLocal8Bit(exception.what());
    } catch (...) {
        failure = QStringLiteral("failed with an exception of an unknown kind");
    }
    return nullptr;
}

}  // namespace

QString PluginLoader::applicationName(const QString& path) {
    const QString name = QFileInfo(path).baseName();
    return name.startsWith(QLatin1String("lib")) ? name.mid(3) : name;
}

DisplayView* PluginLoader::load(const QString& path, AppInfo& info, DisplayView& parent, QString* error) {
    const QFileInfo file(path);
    if (!file.isFile())
        return refuse(error, QStringLiteral("%1: there is no such file").arg(path));
    // A name without a slash would be looked for in the system's library directories.
    const QString absolute = file.absoluteFilePath();
    void* library = ::dlopen(QFile::encodeName(absolute).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return refuse(error, linkerReason(absolute));
    const auto entry = reinterpret_cast<Entry>(::dlsym(library, kEntry));
    if (!entry)
        return refuse(error, QStringLiteral("%1: does not export %2").arg(path, QLatin1String(kEntry)));
    QString failure;
    DisplayView* view = call(entry, info, parent, failure);
    if (!view)
        return refuse(error, QStringLiteral("%1: %2 %3").arg(path, QLatin1String(kEntry), failure));
    return view;
}
