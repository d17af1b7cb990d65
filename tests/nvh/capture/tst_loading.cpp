// The library as a host loads it: by its path, before there is an application object.

#include "tests/support/Files.h"
#include "tests/support/Rows.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class TestLoading : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { QFile::remove("/tmp/NVHLog.txt"); }

    void truncatesTraceFileAtEachLoad() {
        for (int load = 0; load < 2; ++load) {
            writeFile("/tmp/NVHLog.txt", "from before");
            void* library = dlopen(NVH_LIB_DIR "/libNVH.so.1", RTLD_NOW | RTLD_LOCAL);
            QVERIFY2(library, dlerror());
            QCOMPARE(QFile("/tmp/NVHLog.txt").size(), 0);
            QVERIFY(!isInherited("/tmp/NVHLog.txt"));
            for (const char* symbol : {"cRmsThres", "cVdtStaticURL", "allFilenames", "NVHAppVersion", "testTypesVsTags",
                                       "nvhLogFile", "loggerRunning", "_ZN9NVHWorker16staticMetaObjectE"})
                QVERIFY2(dlsym(library, symbol), symbol);
            QVERIFY(!dlsym(library, "cLogVerbose"));
            QCOMPARE(dlclose(library), 0);
        }
    }

    void leavesAloneWhatIsNotItsTraceFile_data() {
        const auto row = columns<QString>("kind");
        for (const char* kind : {"link", "second name", "FIFO", "directory"})
            row(kind, QString(kind));
    }

    void leavesAloneWhatIsNotItsTraceFile() {
        QFETCH(QString, kind);
        const char* name = "/tmp/NVHLog.txt";
        writeFile("/tmp/precious", "precious");
        if (kind == "link")
            QCOMPARE(::symlink("/tmp/precious", name), 0);
        else if (kind == "second name")
            QCOMPARE(::link("/tmp/precious", name), 0);
        else if (kind == "FIFO")
            QCOMPARE(::mkfifo(name, 0600), 0);
        else
            QCOMPARE(::mkdir(name, 0700), 0);
        void* library = dlopen(NVH_LIB_DIR "/libNVH.so.1", RTLD_NOW | RTLD_LOCAL);
        QVERIFY2(library, dlerror());
        QCOMPARE(dlclose(library), 0);
        QCOMPARE(readFile("/tmp/precious"), QByteArray("precious"));
        ::rmdir(name);
    }

private:
    // Whether a program that this process started now would have the file.
    static bool isInherited(const QByteArray& path) {
        for (int descriptor = 3; descriptor < 256; ++descriptor) {
            const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
            const int flags = ::fcntl(descriptor, F_GETFD);
            if (flags >= 0 && QFile::symLinkTarget(link).toUtf8() == path)
                return !(flags & FD_CLOEXEC);
        }
        return true;  // not open at all
    }
};

QTEST_APPLESS_MAIN(TestLoading)
#include "tst_loading.moc"
