// The library as a host loads it: by its path, before there is an application object.

#include <QFile>
#include <QTest>

#include <dlfcn.h>

class TestLoading : public QObject {
    Q_OBJECT

private slots:
    void truncatesTraceFileAtEachLoad() {
        for (int load = 0; load < 2; ++load) {
            QFile trace("/tmp/NVHLog.txt");
            QVERIFY(trace.open(QIODevice::WriteOnly));
            trace.write("from before");
            trace.close();
            void* library = dlopen(NVH_LIB_DIR "/libNVH.so.1", RTLD_NOW | RTLD_LOCAL);
            QVERIFY2(library, dlerror());
            QCOMPARE(trace.size(), 0);
            for (const char* symbol : {"cRmsThres", "cVdtStaticURL", "allFilenames", "NVHAppVersion", "testTypesVsTags",
                                       "nvhLogFile", "loggerRunning", "_ZN9NVHWorker16staticMetaObjectE"})
                QVERIFY2(dlsym(library, symbol), symbol);
            QVERIFY(!dlsym(library, "cLogVerbose"));
            QCOMPARE(dlclose(library), 0);
        }
    }
};

QTEST_APPLESS_MAIN(TestLoading)
#include "tst_loading.moc"
