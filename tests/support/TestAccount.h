#pragma once

#include "api/Account.h"
#include "api/AccountStore.h"
#include "support/TestKeys.h"

#include <QUuid>

// One account held in memory with a fresh key, as if the user had just entered it.
inline void useTestAccount(AccountStore& store, std::optional<QString> vendorNumber = std::nullopt) {
    Account account;
    account.id = QUuid::createUuid();
    account.name = QStringLiteral("Studio");
    account.issuerID = QStringLiteral("57246542-96fe-1a63-e053-0824d011072a");
    account.keyID = QStringLiteral("ABCDE12345");
    account.vendorNumber = std::move(vendorNumber);
    store.useEphemeralAccount(account, makeTestKey().privateKeyPEM);
}
