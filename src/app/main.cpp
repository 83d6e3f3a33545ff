#include "api/AccountStore.h"
#include "api/EnvironmentAccount.h"
#include "app/CommandLine.h"
#include "platform/Clock.h"
#include "workspace/AppState.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"Velmora"_s);
    QCoreApplication::setApplicationName(u"Varnis"_s);

    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();

    AppState state(Platform::standard());
    if (auto env = EnvironmentAccount::fromEnvironment(QProcessEnvironment::systemEnvironment(),
                                                       state.platform().clock->now())) {
        if (auto* failure = std::get_if<EnvironmentAccount::Failure>(&*env)) {
            err << failure->message << u'\n';
            err.flush();
            return failure->isUsageError ? 2 : 1;
        }
        auto loaded = std::get<EnvironmentAccount::Loaded>(std::move(*env));
        state.accountStore().useEphemeralAccount(loaded.account, loaded.privateKeyPEM);
    }

    CommandLine commandLine(state, out, err);
    QTimer::singleShot(0, &app, [&]() {
        QCoro::connect(commandLine.run(arguments), &app, [](int status) { QCoreApplication::exit(status); });
    });
    return app.exec();
}
