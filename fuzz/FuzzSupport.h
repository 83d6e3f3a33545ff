#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

// What every fuzz target shares: the application object that Qt's file, settings and event code
// expects, a scratch folder on a memory file system, and a way to stop on a broken invariant so
// that libFuzzer keeps the input.
namespace Fuzz {

// Creates the one QCoreApplication of the process; call from LLVMFuzzerInitialize. Qt's own
// warnings about odd input are silenced: they are expected here and would drown the log.
void startApplication();

// A folder of this process only, on tmpfs where there is one: the stores write atomically and
// sync, which on a disk would make every execution wait for it.
QString scratchDirectory();

// Stops the run with `what` on stderr; libFuzzer reports the crash and keeps the input.
[[noreturn]] void fail(const char* what);

inline void check(bool ok, const char* what) {
    if (!ok) {
        fail(what);
    }
}

inline QByteArray bytes(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

} // namespace Fuzz
