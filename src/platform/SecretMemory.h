#pragma once

#include <QByteArray>

// Once a private key has been read, a crashing process must not write it into a core dump.
// Idempotent; does nothing where the system has no such switch.
void keepSecretsOutOfCoreDumps();

// Overwrites the bytes of `secret` where this is their only copy, then empties it. A copy
// shared with another holder is only let go of: that holder wipes or keeps its own.
void wipe(QByteArray& secret);
