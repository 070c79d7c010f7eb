#pragma once

#include <QDir>
#include <QStringList>

// The names of this process's threads, as the kernel keeps them.
inline QStringList threadNames()
{
    QStringList names;
    for (const QFileInfo &task :
         QDir("/proc/self/task").entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile comm(task.filePath() + "/comm");
        if (comm.open(QIODevice::ReadOnly))
            names << QString::fromUtf8(comm.readAll()).trimmed();
    }
    return names;
}
