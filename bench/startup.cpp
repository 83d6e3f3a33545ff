// Start-up to the first frame with 200 cached apps and no network, against an empty Qt Quick
// window started the same way. The program runs itself as a child in each mode, alternating, and
// measures from the start of the child process to the child's first frame.
#include "api/AccountStore.h"
#include "api/DiskCache.h"
#include "app/UiShell.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/MemorySecretStore.h"
#include "support/TestKeys.h"
#include "workspace/AppState.h"
#include "workspace/AppsService.h"
#include "workspace/WorkspaceViewModel.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const QString issuer = u"57246542-96fe-1a63-e053-0824d011072a"_s;

Account benchAccount() {
    Account account;
    account.id = QUuid::fromString(u"11111111-2222-3333-4444-555555555555"_s);
    account.name = u"Bench"_s;
    account.issuerID = issuer;
    account.keyID = u"ABCDE12345"_s;
    return account;
}

Platform offlinePlatform(const QString& dataDir) {
    Platform platform;
    platform.clock = std::make_shared<SystemClock>();
    platform.transport = std::make_shared<QtHttpTransport>(platform.clock);
    platform.secrets = std::make_shared<MemorySecretStore>();
    platform.paths = DataPaths::at(dataDir);
    // Port 9 on the loopback: nothing listens, every request is refused at once.
    platform.apiRoot = QUrl(u"http://127.0.0.1:9"_s);
    return platform;
}

void prepareCache(const QString& dataDir) {
    QList<ManagedApp> apps;
    for (int i = 0; i < 200; ++i) {
        ManagedApp app;
        app.id = QString::number(5000 + i);
        app.name = u"App %1"_s.arg(i, 3, 10, QChar(u'0'));
        app.bundleID = u"com.example.app%1"_s.arg(i);
        apps.append(app);
    }
    DiskCache cache(DataPaths::at(dataDir).cacheDirectory(), std::make_shared<SystemClock>());
    cache.storeList(AppsService::diskKey(benchAccount().id), apps);
}

QElapsedTimer sinceMain;

void trace(const char* what) {
    if (qEnvironmentVariableIsSet("BENCH_TRACE")) {
        std::fprintf(stderr, "%7.1f ms  %s\n", double(sinceMain.nsecsElapsed()) / 1e6, what);
    }
}

int child(int argc, char** argv, const QString& mode, const QString& dataDir) {
    sinceMain.start();
    QGuiApplication app(argc, argv);
    trace("application");
    QQuickStyle::setStyle(u"Fusion"_s);
    QQmlApplicationEngine engine;
    std::unique_ptr<AppState> state;
    std::unique_ptr<UiShell> shell;
    QQuickWindow* window = nullptr;
    if (mode == u"empty"_s) {
        const QByteArray custom = qgetenv("BENCH_QML");
        engine.loadData(custom.isEmpty()
                            ? QByteArray("import QtQuick\nimport QtQuick.Controls\n"
                                         "ApplicationWindow { width: 1180; height: 740; visible: true }")
                            : custom);
        window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
        trace("loaded");
    } else {
        state = std::make_unique<AppState>(offlinePlatform(dataDir),
                                           AppState::Options{std::make_shared<QSettings>(
                                               dataDir + u"/settings.ini"_s, QSettings::IniFormat)});
        QByteArray key = qgetenv("BENCH_KEY");
        if (key.isEmpty()) {
            QFile file(dataDir + u"/key.pem"_s);
            if (file.open(QIODevice::ReadOnly)) {
                key = file.readAll();
            }
        }
        state->accountStore().useEphemeralAccount(benchAccount(), key);
        trace("state");
        shell = std::make_unique<UiShell>(*state, engine);
        trace("shell");
        shell->load();
        trace("loaded");
        shell->start();
        trace("started");
        window = shell->mainWindow();
    }
    if (!window) {
        return 2;
    }
    if (qEnvironmentVariableIsSet("BENCH_TRACE")) {
        QObject::connect(window, &QQuickWindow::beforeSynchronizing, &app, [] { trace("synchronizing"); });
        QObject::connect(window, &QQuickWindow::beforeRendering, &app, [] { trace("rendering"); });
        QObject::connect(window, &QQuickWindow::afterRendering, &app, [] { trace("rendered"); });
    }
    QObject::connect(window, &QQuickWindow::frameSwapped, &app, [&]() {
        trace("frame");
        if (state && state->apps().size() != 200) {
            return; // not the frame the user waits for yet
        }
        std::printf("frame\n");
        std::fflush(stdout);
        if (qEnvironmentVariableIsSet("BENCH_EXIT_AT_FRAME")) {
            std::_Exit(0); // for instruction counts that stop at the frame
        }
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    });
    return app.exec();
}

double runOnce(const QString& mode, const QString& dataDir, const QByteArray& key) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"BENCH_KEY"_s, QString::fromLatin1(key));
    process.setProcessEnvironment(env);
    if (qEnvironmentVariableIsSet("BENCH_TRACE")) {
        // The children's own timeline goes straight to the terminal.
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    }
    QElapsedTimer timer;
    timer.start();
    process.start(QCoreApplication::applicationFilePath(), {u"--child"_s, mode, dataDir});
    // The time is taken when the child reports its first frame, not when it has shut down again.
    QByteArray output;
    double ms = -1;
    while (process.waitForReadyRead(60000)) {
        output += process.readAllStandardOutput();
        if (output.contains("frame")) {
            ms = double(timer.nsecsElapsed()) / 1e6;
            break;
        }
    }
    process.waitForFinished(60000);
    if (ms < 0) {
        std::fprintf(stderr, "%s: no frame (%s)\n", qPrintable(mode),
                     process.readAllStandardError().constData());
    }
    return ms;
}

double median(QList<double> values) {
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    if (argc == 4 && QByteArray(argv[1]) == "--child") {
        return child(argc, argv, QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    }
    QCoreApplication app(argc, argv);
    if (argc == 3 && QByteArray(argv[1]) == "--prepare") {
        // A data folder for profiling one child by hand: `bench_startup --child full DIR`.
        const QString dataDir = QString::fromLocal8Bit(argv[2]);
        prepareCache(dataDir);
        QFile file(dataDir + u"/key.pem"_s);
        return file.open(QIODevice::WriteOnly) && file.write(makeTestKey().privateKeyPEM) > 0 ? 0 : 1;
    }
    const int runs = argc > 1 ? QByteArray(argv[1]).toInt() : 7;
    QTemporaryDir dir;
    prepareCache(dir.path());
    const QByteArray key = makeTestKey().privateKeyPEM;

    QList<double> empty;
    QList<double> full;
    // Each pair runs back to back, so that both share whatever else the machine is doing then.
    QList<double> pairs;
    runOnce(u"empty"_s, dir.path(), key); // warm the file cache
    for (int i = 0; i < runs; ++i) {
        empty.append(runOnce(u"empty"_s, dir.path(), key));
        full.append(runOnce(u"full"_s, dir.path(), key));
        pairs.append(empty.last() > 0 ? full.last() / empty.last() : 0.0);
    }
    const double e = median(empty);
    const double f = median(full);
    std::printf("startup: median of %d runs, process start to first frame (offscreen, software)\n", runs);
    std::printf("  empty Qt Quick window:         %7.1f ms\n", e);
    std::printf("  Varnis, 200 cached apps:       %7.1f ms\n", f);
    std::printf("  ratio of the medians:          %7.2f (goal at most 1.50)\n", e > 0 ? f / e : 0.0);
    std::printf("  median ratio of the pairs:     %7.2f\n", median(pairs));
    return 0;
}
