#include "reportlinereader.h"

#include <QFileDevice>
#include <QList>
#include <cctype>
#include <cstring>

namespace
{

bool isHexByte(const QByteArray &token)
{
    if (token.isEmpty() || token.size() > 2)
        return false;
    for (char c : token) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
    }
    return true;
}

} // namespace

ReportLineReader::Status ReportLineReader::next()
{
    for (;;) {
        // Every line read holds at least its end of line; empty means end or error.
        const QByteArray line = m_input.readLine();
        if (line.isEmpty())
            return m_input.error() == QFileDevice::NoError ? Status::End : Status::ReadError;
        ++m_lineNumber;
        switch (parse(line)) {
        case LineKind::Report:
            return Status::Report;
        case LineKind::Bad:
            return Status::BadLine;
        case LineKind::Skip:
            break;
        }
    }
}

ReportLineReader::LineKind ReportLineReader::parse(const QByteArray &line)
{
    const QByteArray text = line.simplified();
    if (text.isEmpty() || text.startsWith('#'))
        return LineKind::Skip;
    const QList<QByteArray> tokens = text.split(' ');
    if (tokens.size() > kReportBufferSize)
        return bad(QString("more than %1 bytes").arg(kReportBufferSize));
    std::memset(m_report, 0, sizeof m_report);
    for (int i = 0; i < tokens.size(); ++i) {
        if (!isHexByte(tokens.at(i)))
            return bad(QString("not a hexadecimal byte: '%1'").arg(QString(tokens.at(i))));
        m_report[i] = static_cast<quint8>(tokens.at(i).toUInt(nullptr, 16));
    }
    m_length = tokens.size();
    return LineKind::Report;
}

ReportLineReader::LineKind ReportLineReader::bad(const QString &why)
{
    m_problem = why;
    return LineKind::Bad;
}
