#include "FuzzSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace Fuzz {

namespace {

void quietMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "qFatal: %s\n", qPrintable(message));
        std::abort();
    }
}

} // namespace

void startApplication() {
    static int argc = 1;
    static char name[] = "varnis-fuzz";
    static char* argv[] = {name, nullptr};
    // Never destroyed: libFuzzer ends the process with exit(), and nothing may run after that.
    static auto* app = new QCoreApplication(argc, argv);
    (void)app;
    qInstallMessageHandler(quietMessages);
}

QString scratchDirectory() {
    static QTemporaryDir dir([] {
        const QFileInfo shm(u"/dev/shm"_s);
        const QString base = shm.isDir() && shm.isWritable() ? shm.filePath() : QDir::tempPath();
        return base + u"/varnis-fuzz-XXXXXX"_s;
    }());
    if (!dir.isValid()) {
        fail("no scratch folder");
    }
    return dir.path();
}

void fail(const char* what) {
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}

} // namespace Fuzz
