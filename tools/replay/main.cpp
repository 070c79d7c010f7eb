// scribora-replay: runs reports of a capture through the driver's own report
// path, from the dispatcher to the virtual devices, and prints what the
// desktop would receive. Nothing of the machine's devices is opened.

#include "cglobaldata.h"
#include "ctablet.h"
#include "eventpipes.h"
#include "eventprinter.h"
#include "replayoptions.h"
#include "replaytablet.h"
#include "reportlinereader.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <cstdio>
#include <iterator>
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

void printEvents(const EventPipes &pipes, EventPrinter &printer)
{
    input_event events[64];
    for (EventPipes::Device device : {EventPipes::Pen, EventPipes::Mouse, EventPipes::Eraser}) {
        for (int count; (count = pipes.read(device, events, std::size(events))) > 0;) {
            for (int i = 0; i < count; ++i)
                printer.printEvent(EventPipes::name(device), events[i]);
        }
    }
}

// Events written before a message are printed before it.
void printMessages(CTablet &tablet, const EventPipes &pipes, EventPrinter &printer)
{
    QObject::connect(&tablet, qOverload<int, int, int>(&CTablet::PostActionMsg),
                     [&pipes, &printer](int tabletId, int msgId, int value) {
                         printEvents(pipes, printer);
                         printer.printMessage(tabletId, msgId, QString::number(value));
                     });
    QObject::connect(&tablet, qOverload<int, int, QString>(&CTablet::PostActionMsg),
                     [&pipes, &printer](int tabletId, int msgId, const QString &value) {
                         printEvents(pipes, printer);
                         printer.printMessage(tabletId, msgId, value);
                     });
}

int replay(ReportLineReader &reader, ReplayTablet &tablet, const EventPipes &pipes,
           EventPrinter &printer)
{
    for (;;) {
        switch (reader.next()) {
        case ReportLineReader::Status::Report:
            tablet.feed(reader.report(), reader.length());
            // Messages the engine posted arrive here, after the events written before them.
            QCoreApplication::processEvents();
            printEvents(pipes, printer);
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
    EventPipes pipes;
    if (!pipes.attach(CGlobalData::MyInputDriver))
        return fail("cannot create the event pipes");
    EventPrinter printer(stdout);
    printMessages(tablet.tablet(), pipes, printer);
    ReportLineReader reader(input);
    return replay(reader, tablet, pipes, printer);
}
