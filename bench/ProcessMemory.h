#pragma once

#include <QByteArray>
#include <QFile>

#include <malloc.h>

namespace zkr::test {

// Bytes the heap hands out now, in MiB.
inline double heapMiB() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

// The process's resident memory, in KiB; 0 where the system does not say.
inline long residentKiB() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toLong();
        }
    }
    return 0;
}

} // namespace zkr::test
