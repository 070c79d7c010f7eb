#pragma once

#include "cparsetabletdata.h"

#include <QString>
#include <QtGlobal>

class QFileDevice;

// Reads reports written one per line as hexadecimal bytes separated by blanks.
// Blank lines and lines starting with '#' are skipped.
class ReportLineReader
{
public:
    enum class Status { Report, BadLine, End, ReadError };

    explicit ReportLineReader(QFileDevice &input) : m_input(input) {}

    Status next();

    // Valid after Report: the whole zeroed buffer a read would fill, and the bytes given.
    quint8 *report() { return m_report; }
    int length() const { return m_length; }
    int lineNumber() const { return m_lineNumber; }
    // Valid after BadLine.
    const QString &problem() const { return m_problem; }

private:
    enum class LineKind { Report, Skip, Bad };
    LineKind parse(const QByteArray &line);
    LineKind bad(const QString &why);

    QFileDevice &m_input;
    quint8 m_report[kReportBufferSize] = {};
    int m_length = 0;
    int m_lineNumber = 0;
    QString m_problem;
};
