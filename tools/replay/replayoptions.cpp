#include "replayoptions.h"

#include "cglobaldata.h"
#include "deviceattributes.h"

#include <QCommandLineParser>
#include <QRegularExpression>

namespace
{

constexpr qint64 kMaxCoordinate = 0xFFFFFF; // 24-bit positions in the reports
constexpr qint64 kMaxPressure = 0xFFFF;     // 16-bit pressure in the reports
constexpr qint64 kMaxProductId = 0xFFFF;
constexpr qint64 kMaxLpi = 100000;
constexpr int kMaxScreens = kScreenSlots - 1; // slot 0 is the whole desktop
constexpr qint64 kTablet = 1;
constexpr qint64 kPenDisplay = 2;
constexpr qint64 kRemote = 4;

void addOptions(QCommandLineParser &parser)
{
    parser.addHelpOption();
    parser.addOptions({
        {"config", "Profile file to read the tablet's section from.", "FILE"},
        {"model", "Section (model name) of the profile.", "NAME"},
        {"pid", "Product id, hexadecimal.", "HEX"},
        {"type", "Device type: 1 tablet, 2 pen display, 4 remote.", "N"},
        {"maxx", "Largest X the tablet reports; 0 for a device without a pen.", "N"},
        {"maxy", "Largest Y the tablet reports; 0 for a device without a pen.", "N"},
        {"pressure", "Largest pressure the tablet reports; 0 for a device without a pen.", "N"},
        {"lpi", "Device units per inch (default and 0: 5080).", "N"},
        {"screen", "A screen, in order; the first is primary. Repeat for more.", "WxH+X+Y"},
    });
    parser.addPositionalArgument("FILE",
                                 "Reports, one per line as hexadecimal bytes (default: standard "
                                 "input). Prints one line per event and action message.",
                                 "[FILE]");
}

} // namespace

bool ReplayOptions::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments))
        return fail(parser.errorText());
    if (parser.isSet("help")) {
        m_helpRequested = true;
        m_helpText = parser.helpText();
        return true;
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1)
        return fail("more than one input file");
    m_inputFile = files.value(0);
    return readTablet(parser);
}

bool ReplayOptions::readTablet(const QCommandLineParser &parser)
{
    QString pid;
    qint64 type = 0;
    qint64 pressure = 0;
    qint64 lpi = kDefaultLpi;
    if (!required(parser, "config", m_tablet.configFile) ||
        !required(parser, "model", m_tablet.model) || !required(parser, "pid", pid) ||
        !number(parser, "type", kTablet, kRemote, type) ||
        !number(parser, "maxx", 0, kMaxCoordinate, m_tablet.maxX) ||
        !number(parser, "maxy", 0, kMaxCoordinate, m_tablet.maxY) ||
        !number(parser, "pressure", 0, kMaxPressure, pressure))
        return false;
    if (parser.isSet("lpi") && !number(parser, "lpi", 0, kMaxLpi, lpi))
        return false;
    bool ok = false;
    m_tablet.productId = pid.toInt(&ok, 16);
    if (!ok || m_tablet.productId < 0 || m_tablet.productId > kMaxProductId)
        return fail(QString("--pid: not a hexadecimal product id: '%1'").arg(pid));
    if (type != kTablet && type != kPenDisplay && type != kRemote)
        return fail("--type: must be 1, 2 or 4");
    m_tablet.deviceType = static_cast<int>(type);
    m_tablet.maxPressure = static_cast<int>(pressure);
    m_tablet.lpi = static_cast<int>(lpi);
    return readScreens(parser.values("screen"));
}

bool ReplayOptions::readScreens(const QStringList &values)
{
    if (values.isEmpty())
        return fail("missing --screen");
    if (values.size() > kMaxScreens)
        return fail(QString("more than %1 screens").arg(kMaxScreens));
    static const QRegularExpression geometry(R"(^(\d+)x(\d+)([+-]\d+)([+-]\d+)$)");
    for (const QString &value : values) {
        const QRegularExpressionMatch match = geometry.match(value);
        const int width = match.captured(1).toInt();
        const int height = match.captured(2).toInt();
        if (!match.hasMatch() || width < 1 || height < 1)
            return fail(QString("--screen: not a geometry WxH+X+Y: '%1'").arg(value));
        m_tablet.screens.append(
            QRect(match.captured(3).toInt(), match.captured(4).toInt(), width, height));
    }
    return true;
}

bool ReplayOptions::required(const QCommandLineParser &parser, const QString &name, QString &value)
{
    if (!parser.isSet(name))
        return fail("missing --" + name);
    value = parser.value(name);
    return true;
}

bool ReplayOptions::number(const QCommandLineParser &parser, const QString &name, qint64 minimum,
                           qint64 maximum, qint64 &value)
{
    QString text;
    if (!required(parser, name, text))
        return false;
    bool ok = false;
    value = text.toLongLong(&ok, 10);
    if (!ok || value < minimum || value > maximum)
        return fail(QString("--%1: not a number from %2 to %3: '%4'")
                        .arg(name)
                        .arg(minimum)
                        .arg(maximum)
                        .arg(text));
    return true;
}

bool ReplayOptions::fail(const QString &why)
{
    m_error = why;
    return false;
}
