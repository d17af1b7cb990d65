#include "tests/support/PrivateMachine.h"

#include "host/setup/HostServices.h"
#include "host/values/ValueSetter.h"

#include <HelixDash/services/ConfigStore.h>
#include <HelixDash/services/SysUtils.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <csignal>
#include <unistd.h>

namespace {

// First on the search path while a program is replaced, all of it while one is hidden.
const QString kPrograms = QStringLiteral("/tmp/programs");
const QByteArray kSearchPath = qgetenv("PATH");

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished() && process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

}  // namespace

PrivateMachine::PrivateMachine() {
    if (qEnvironmentVariableIsEmpty("NVH_PRIVATE_NAMESPACE"))
        qFatal("This test replaces programs; run it through tests/support/in-private-namespace");
    // What this process asks of its own server must not go through anybody else's.
    for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
        qunsetenv(name);
    HostServices::addNamedValues();
    SysUtils::setVin(QLatin1String(kVin));
    reset();
}

void PrivateMachine::reset(const QByteArray& recorderMode) {
    // Nothing but what tests leave; directories that are kept from the real /tmp are somebody else's.
    const QStringList leavings = {"*.wav", "*.txt", "*.tgz*", "*.rescue*", "recorder-*", "capture", "programs"};
    for (const QFileInfo& entry : QDir(QStringLiteral("/tmp")).entryInfoList(leavings, QDir::AllEntries | QDir::System))
        entry.isDir() ? QDir(entry.filePath()).removeRecursively() : QFile::remove(entry.filePath());
    qputenv("PATH", kSearchPath);
    qputenv("NVH_RECORDER", recorderMode);
    QDir().mkpath(QFileInfo(QLatin1String(kCapture)).path());
    QFile::remove(QStringLiteral("/usr/bin/arecord"));
    QFile::copy(QStringLiteral(NVH_SOURCE_DIR "/tests/support/recorder"), QStringLiteral("/usr/bin/arecord"));

    QDir().mkpath(QFileInfo(QLatin1String(kConfig)).path());
    QFile::remove(QLatin1String(kConfig));
    ConfigStore::instance().open(QLatin1String(kConfig));
    configure(QStringLiteral("audio/capturing_file_name"), QLatin1String(kCapture));
    for (DataValue* value : DataValueManager::instance().values()) {
        const DataValue::EventLocker locker(value);
        value->setInvalid();
    }
}

void installProgram(const QString& path, const QByteArray& script) {
    QFile::remove(path);
    writeFile(path, "#!/bin/sh\n" + script + "\n");
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther);
}

void replaceProgram(const QString& name, const QByteArray& script) {
    QDir().mkpath(kPrograms);
    installProgram(kPrograms + QLatin1Char('/') + name, script);
    qputenv("PATH", kPrograms.toLocal8Bit() + ':' + kSearchPath);
}

void hideProgram(const QString& name) {
    QDir().mkpath(kPrograms);
    for (const QString& program : {QStringLiteral("tar"), QStringLiteral("gzip"), QStringLiteral("curl")}) {
        if (program != name)
            QFile::link(QStandardPaths::findExecutable(program), kPrograms + QLatin1Char('/') + program);
    }
    qputenv("PATH", kPrograms.toLocal8Bit());
}

void configure(const QString& key, const QVariant& value) {
    QString error;
    if (!ConfigStore::instance().setValue(key, value, &error))
        qFatal("%s", qPrintable(error));
}

void setValue(const char* name, const QVariant& value) {
    QString error;
    if (!ValueSetter::set(QLatin1String(name), value, &error))
        qFatal("%s", qPrintable(error));
}

QStringList archiveMembers(const QString& archive) {
    return QString::fromLocal8Bit(outputOf("tar", {"-tzf", archive})).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QByteArray archiveMember(const QString& archive, const QString& member) {
    return outputOf("tar", {"-xzOf", archive, member});
}

FullDisk::FullDisk() {
    // Or the process would be killed for it.
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit none{0, mBefore.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &none);
}

FullDisk::~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &mBefore);
}

QStringList childPrograms() {
    QStringList programs;
    for (const QString& pid : QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")})) {
        // "pid (name) state parent …"; a name may hold anything.
        const QString status = QString::fromLocal8Bit(readFile(QStringLiteral("/proc/%1/stat").arg(pid)));
        const auto nameEnd = status.lastIndexOf(QLatin1Char(')'));
        if (status.mid(nameEnd + 2).section(QLatin1Char(' '), 1, 1).toInt() == ::getpid())
            programs.append(status.left(nameEnd).section(QLatin1Char('('), 1));
    }
    return programs;
}

int threadCount() {
    return int(QDir(QStringLiteral("/proc/self/task")).entryList({QStringLiteral("[0-9]*")}).size());
}
