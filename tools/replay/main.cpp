// scribora-replay: runs reports of a capture through the driver's own report
// path, from the dispatcher to the virtual devices, and prints what the
// desktop would receive. Nothing of the machine's devices is opened.

#include "cglobaldata.h"
#include "ctablet.h"
#include "devicetap.h"
#include "eventprinter.h"
#include "replayoptions.h"
#include "replaytablet.h"
#include "reportlinereader.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <cstdio>
#include <unistd.h>

namespace
{

constexpr int kUsageError = 2;

int fail(const QString &why)
{
    std::fprintf(stderr, "scribora-replay: %s\n", why.toLocal8Bit().constData());
    return kUsageError;
}

bool openInput(QFile &input, const QString &path)
{
    if (path.isEmpty())
        return input.open(STDIN_FILENO, QIODevice::ReadOnly);
    input.setFileName(path);
    return input.open(QIODevice::ReadOnly);
}

// Events are printed as they are written, so each message follows the events before it.
void printMessages(CTablet &tablet, EventPrinter &printer)
{
    QObject::connect(&tablet, qOverload<int, int, int>(&CTablet::PostActionMsg),
                     [&printer](int tabletId, int msgId, int value) {
                         printer.printMessage(tabletId, msgId, QString::number(value));
                     });
    QObject::connect(&tablet, qOverload<int, int, QString>(&CTablet::PostActionMsg),
                     [&printer](int tabletId, int msgId, const QString &value) {
                         printer.printMessage(tabletId, msgId, value);
                     });
}

int replay(ReportLineReader &reader, ReplayTablet &tablet, EventPrinter &printer)
{
    for (;;) {
        switch (reader.next()) {
        case ReportLineReader::Status::Report:
            tablet.feed(reader.report(), reader.length());
            printer.flush();
            break;
        case ReportLineReader::Status::BadLine:
            std::fprintf(stderr, "scribora-replay: line %d skipped: %s\n", reader.lineNumber(),
                         reader.problem().toLocal8Bit().constData());
            break;
        case ReportLineReader::Status::ReadError:
            return fail(QString("reading the input failed after line %1").arg(reader.lineNumber()));
        case ReportLineReader::Status::End:
            return 0;
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    // The driver's own log would bury the output; QT_LOGGING_RULES brings it back.
    QLoggingCategory::setFilterRules("*.debug=false\n*.info=false");
    QCoreApplication app(argc, argv);
    ReplayOptions options;
    if (!options.parse(app.arguments()))
        return fail(options.error());
    if (options.helpRequested()) {
        std::fputs(options.helpText().toLocal8Bit().constData(), stdout);
        return 0;
    }
    QFile input;
    if (!openInput(input, options.inputFile()))
        return fail(QString("cannot read '%1': %2").arg(options.inputFile(), input.errorString()));
    ReplayTablet tablet;
    if (!tablet.setUp(options.tablet()))
        return fail(tablet.error());
    EventPrinter printer(stdout);
    DeviceTap devices(printer);
    if (!devices.attach(CGlobalData::MyInputDriver))
        return fail("cannot open /dev/null for the virtual devices");
    printMessages(tablet.tablet(), printer);
    ReportLineReader reader(input);
    return replay(reader, tablet, printer);
}
