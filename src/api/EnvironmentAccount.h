#pragma once

#include "api/Account.h"

#include <QByteArray>
#include <QProcessEnvironment>

#include <optional>
#include <variant>

// An account given by VARNIS_ISSUER_ID, VARNIS_KEY_ID and VARNIS_KEY_FILE, for build machines
// without a keyring: held in memory for one run, never stored.
namespace EnvironmentAccount {

struct Loaded {
    Account account;
    QByteArray privateKeyPEM;
};
struct Failure {
    QString message;
    bool isUsageError = false;
};

// Nothing when none of the three variables is set.
std::optional<std::variant<Loaded, Failure>> fromEnvironment(const QProcessEnvironment& environment,
                                                             const QDateTime& now);

} // namespace EnvironmentAccount
