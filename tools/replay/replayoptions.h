#pragma once

#include "replayedtablet.h"

#include <QString>
#include <QStringList>

class QCommandLineParser;

// The command line of scribora-replay; the first problem found ends the parse.
class ReplayOptions
{
public:
    bool parse(const QStringList &arguments);

    const QString &error() const { return m_error; }
    bool helpRequested() const { return m_helpRequested; }
    const QString &helpText() const { return m_helpText; }
    const ReplayedTablet &tablet() const { return m_tablet; }
    // Empty for standard input.
    const QString &inputFile() const { return m_inputFile; }

private:
    bool readTablet(const QCommandLineParser &parser);
    bool readScreens(const QStringList &values);
    bool required(const QCommandLineParser &parser, const QString &name, QString &value);
    bool number(const QCommandLineParser &parser, const QString &name, qint64 minimum,
                qint64 maximum, qint64 &value);
    bool fail(const QString &why);

    QString m_error;
    QString m_helpText;
    bool m_helpRequested = false;
    ReplayedTablet m_tablet;
    QString m_inputFile;
};
