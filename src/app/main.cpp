#include "api/AccountStore.h"
#include "api/EnvironmentAccount.h"
#include "app/UiShell.h"
#include "cli/CommandLine.h"
#include "platform/Clock.h"
#include "platform/SingleInstance.h"
#include "workspace/AppState.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {

void nameApplication() {
    QCoreApplication::setOrganizationName(u"Velmora"_s);
    QCoreApplication::setApplicationName(u"Varnis"_s);
}

// The account from VARNIS_ISSUER_ID, VARNIS_KEY_ID and VARNIS_KEY_FILE, if given; an exit status
// when it is given badly.
std::optional<int> applyEnvironmentAccount(AppState& state, QTextStream& err) {
    auto env = EnvironmentAccount::fromEnvironment(QProcessEnvironment::systemEnvironment(),
                                                   state.platform().clock->now());
    if (!env) {
        return std::nullopt;
    }
    if (auto* failure = std::get_if<EnvironmentAccount::Failure>(&*env)) {
        err << failure->message << u'\n';
        err.flush();
        return failure->isUsageError ? 2 : 1;
    }
    auto loaded = std::get<EnvironmentAccount::Loaded>(std::move(*env));
    state.accountStore().useEphemeralAccount(loaded.account, loaded.privateKeyPEM);
    return std::nullopt;
}

bool isWindowStart(const QStringList& arguments) {
    // No command, or only links to open ("varnis velmora://app/123/reviews").
    return std::all_of(arguments.cbegin(), arguments.cend(),
                       [](const QString& a) { return a.startsWith(u"velmora:"_s, Qt::CaseInsensitive); });
}

int runCommandLine(int argc, char** argv, QStringList arguments) {
    QCoreApplication app(argc, argv);
    nameApplication();
    QTextStream out(stdout);
    QTextStream err(stderr);
    AppState state(Platform::standard());
    if (auto status = applyEnvironmentAccount(state, err)) {
        return *status;
    }
    CommandLine commandLine(state, out, err);
    QTimer::singleShot(0, &app, [&]() {
        QCoro::connect(commandLine.run(arguments), &app, [](int status) { QCoreApplication::exit(status); });
    });
    return app.exec();
}

int runWindow(int argc, char** argv, QStringList links) {
    QGuiApplication app(argc, argv);
    nameApplication();
    QGuiApplication::setApplicationDisplayName(u"Varnis"_s);
    QGuiApplication::setDesktopFileName(u"velmora"_s);
    QQuickStyle::setStyle(u"Fusion"_s);
    // Qt's own texts (file chooser, standard buttons) in German, like everything else.
    QTranslator qtTexts;
    if (qtTexts.load(QLocale(QLocale::German, QLocale::Germany), u"qt"_s, u"_"_s,
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&qtTexts);
    }
    QTextStream err(stderr);

    // A second start hands its links to the running window and ends.
    SingleInstance instance(SingleInstance::defaultServerName());
    if (instance.forwardToRunning(links)) {
        return 0;
    }
    instance.listen();

    AppState state(Platform::standard());
    if (auto status = applyEnvironmentAccount(state, err)) {
        return *status;
    }
    // Without any account the window opens on the sample data rather than on nothing.
    if (!state.hasAccount()) {
        state.setDemoModeEnabled(true);
    }

    QQmlApplicationEngine engine;
    UiShell shell(state, engine);
    QObject::connect(&instance, &SingleInstance::messagesReceived, &shell, &UiShell::handleMessages);
    if (!shell.load()) {
        err << u"Das Fenster konnte nicht geladen werden.\n"_s;
        return 1;
    }
    shell.start();
    if (!links.isEmpty()) {
        shell.handleMessages(links);
    }
    return app.exec();
}

} // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    if (isWindowStart(arguments)) {
        return runWindow(argc, argv, arguments);
    }
    return runCommandLine(argc, argv, arguments);
}
