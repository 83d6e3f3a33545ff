#pragma once

// What the benchmarks share: a fixed random sequence, the process's memory figures and a median.

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <vector>

namespace Bench {

// A fixed sequence, so that every run measures the same input.
struct Lcg {
    quint64 state = 0x9E3779B97F4A7C15ull;
    quint32 next(quint32 bound) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        return quint32(state >> 33) % bound;
    }
};

// A line of /proc/self/status in kB ("VmHWM", "VmRSS"), or -1.
inline qint64 statusKB(const char* key) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(prefix)) {
            return line.mid(prefix.size()).trimmed().split(' ').constFirst().toLongLong();
        }
    }
    return -1;
}

// Forgets the peak of the resident set, so that the next VmHWM is the peak from here on.
inline bool resetPeak() {
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    return refs.open(QIODevice::WriteOnly) && refs.write("5") == 1;
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace Bench
