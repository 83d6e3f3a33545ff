#include "platform/SecretMemory.h"

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

void keepSecretsOutOfCoreDumps() {
#ifdef Q_OS_LINUX
    static const bool done = [] {
        prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
        return true;
    }();
    (void)done;
#endif
}

void wipe(QByteArray& secret) {
    if (secret.isDetached() && !secret.isEmpty()) {
        // volatile, so that the compiler cannot drop a write to memory that is freed next.
        volatile char* bytes = secret.data();
        for (qsizetype i = 0; i < secret.size(); ++i) {
            bytes[i] = 0;
        }
    }
    secret = QByteArray();
}
