#pragma once

#include <QDir>
#include <QFile>
#include <QStringList>

// The names of this process's threads, as the kernel keeps them.
inline QStringList threadNames()
{
    QStringList names;
    const QDir tasks("/proc/self/task");
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile comm(tasks.filePath(task + "/comm"));
        if (comm.open(QIODevice::ReadOnly))
            names << QString::fromUtf8(comm.readAll()).trimmed();
    }
    return names;
}
