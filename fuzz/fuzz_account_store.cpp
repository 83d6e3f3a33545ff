// accounts.json, the list of accounts without their keys. Whatever the file holds, the store
// reads it or starts empty; an account it read must survive the store's next write unchanged.

#include "FuzzSupport.h"

#include "api/AccountStore.h"
#include "platform/Clock.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

const Platform& platform() {
    static const Platform p = [] {
        Platform made;
        made.clock = std::make_shared<ManualClock>();
        made.paths = DataPaths::at(Fuzz::scratchDirectory() + u"/accounts"_s);
        return made;
    }();
    return p;
}

QList<QJsonObject> storedForm(const AccountStore& store) {
    QList<QJsonObject> result;
    for (const auto& account : store.accounts()) {
        result.append(account.toJson());
    }
    return result;
}

void writeFile(const QString& path, const QByteArray& contents) {
    QFile file(path);
    Fuzz::check(file.open(QIODevice::WriteOnly | QIODevice::Truncate), "cannot write the scratch file");
    file.write(contents);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    QDir().mkpath(platform().paths.root());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString path = platform().paths.accountsFile();
    writeFile(path, Fuzz::bytes(data, size));

    QList<QJsonObject> read;
    {
        AccountStore store(platform());
        for (const auto& account : store.accounts()) {
            (void)account.hasUsableVendorNumber();
            if (account.capabilities) {
                (void)account.capabilities->findings();
            }
        }
        Fuzz::check(store.accounts().isEmpty() || store.selectedAccount().has_value(),
                    "accounts without a selected one");
        read = storedForm(store);
        if (store.accounts().isEmpty()) {
            return 0;
        }
        // Any change writes the whole list.
        store.updateAccount(store.accounts().first());
    }
    const AccountStore again(platform());
    Fuzz::check(storedForm(again) == read, "the accounts read back changed after a write");
    return 0;
}
