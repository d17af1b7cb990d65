#include "host/app/Session.h"
#include "host/console/Console.h"
#include "host/setup/PlainText.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryFile>

#include <cstdio>

namespace {

constexpr int kUnusable = 2;

bool isSet(const char* variable) {
    return !qEnvironmentVariableIsEmpty(variable);
}

// A display of the window's size, for the platforms that have none of their own: offscreen, which is also what holds
// without any display, and VNC. On offscreen's usual smaller one a touch beyond its edge would be lost.
class DisplayChoice {
public:
    explicit DisplayChoice(QSize size) {
        const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
        if (chosen == "vnc")
            qputenv("QT_QPA_PLATFORM", QStringLiteral("vnc:size=%1x%2").arg(size.width()).arg(size.height()).toUtf8());
        else if (chosen == "offscreen" || (chosen.isEmpty() && !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")))
            useOffscreen(size);
    }

private:
    void useOffscreen(QSize size) {
        const QJsonObject screen = {{QStringLiteral("name"), QStringLiteral("screen")},
                                    {QStringLiteral("x"), 0},
                                    {QStringLiteral("y"), 0},
                                    {QStringLiteral("width"), size.width()},
                                    {QStringLiteral("height"), size.height()},
                                    {QStringLiteral("logicalDpi"), 96},
                                    {QStringLiteral("logicalBaseDpi"), 96},
                                    {QStringLiteral("dpr"), 1}};
        QByteArray platform = "offscreen";
        if (mConfiguration.open()) {
            mConfiguration.write(QJsonDocument(QJsonObject{{QStringLiteral("screens"), QJsonArray{screen}}}).toJson());
            mConfiguration.close();
            platform += ":configfile=" + QFile::encodeName(mConfiguration.fileName());
        }
        qputenv("QT_QPA_PLATFORM", platform);
    }

    QTemporaryFile mConfiguration;
};

int refuse(const QString& error) {
    std::fprintf(stderr, "helixdash: %s\n", PlainText::printable(error).constData());
    return kUnusable;
}

QStringList argumentList(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QStringList arguments = argumentList(argc, argv);
    const int consoleWidth = arguments.contains(QStringLiteral("--console")) ? Console::kWidth : 0;
    const DisplayChoice display(QSize(Screen::kWidth + consoleWidth, Screen::kHeight));
    // Qt sees the program's name alone: it would take --plugin for one of its own options.
    int argumentsForQt = 1;
    QApplication application(argumentsForQt, argv);
    QApplication::setApplicationName(QStringLiteral("helixdash"));
    QApplication::setApplicationVersion(QStringLiteral(NVH_VERSION));
    // The same console on every desk.
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setQuitOnLastWindowClosed(false);

    QString error;
    const auto options = ScreenOptions::read(arguments, &error);
    if (!options)
        return refuse(error);
    Session session;
    if (!session.prepare(*options, &error))
        return refuse(error);
    return session.run();
}
