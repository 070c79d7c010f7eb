#pragma once

#include <QString>
#include <QtGlobal>

// Qt message handler that keeps a rolling log.txt/oldlog.txt pair in the home folder.
// Ready to be passed to qInstallMessageHandler; the program does not install it.
void myMessageOutput(QtMsgType type, const QMessageLogContext &context, const QString &msg);
