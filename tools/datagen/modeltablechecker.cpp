#include "modeltablechecker.h"

#include "zelkdevice.h"

#include <QRegularExpression>

namespace
{

// The name is both a C string in char[30] and the tag of the model's profile section.
constexpr int kMaxNameLength = 29;
constexpr int kMaxKeys = 40;
constexpr int kMaxPens = 8;
constexpr int kPenButtons = 3;

bool isTagName(const QString &name)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z_][A-Za-z0-9_.-]*$"));
    return pattern.match(name).hasMatch() &&
           !name.startsWith(QLatin1String("xml"), Qt::CaseInsensitive);
}

// Names go into an ini file that is read without a codec and never need an escape.
bool isPlainText(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7E || c == QLatin1Char('"') ||
            c == QLatin1Char('\\'))
            return false;
    }
    return text.trimmed() == text;
}

bool isDeviceType(int type)
{
    return type == DeviceTypeTablet || type == DeviceTypePenDisplay || type == DeviceTypeRemote;
}

} // namespace

bool ModelTableChecker::check(const ModelTable &table)
{
    if (table.vendor != kVendorId)
        return fail(QStringLiteral("vendor id is not 0x%1").arg(kVendorId, 4, 16));
    if (!isPlainText(table.copyright))
        return fail(QStringLiteral("the copyright text is not plain printable ASCII"));
    if (table.penButtons.size() != kPenButtons)
        return fail(QStringLiteral("penButtons needs %1 actions").arg(kPenButtons));
    for (const ModelTraits &model : table.models) {
        if (!checkModel(model))
            return false;
    }
    m_context.clear();
    if (m_rows != kCatalogueSize)
        return fail(QStringLiteral("%1 product rows, the catalogue holds %2")
                        .arg(m_rows)
                        .arg(kCatalogueSize));
    return true;
}

bool ModelTableChecker::checkModel(const ModelTraits &model)
{
    m_context = QStringLiteral("model %1").arg(model.name);
    if (model.name.size() > kMaxNameLength || !isTagName(model.name))
        return fail(QStringLiteral("the name is longer than %1 or not an XML tag name")
                        .arg(kMaxNameLength));
    if (m_names.contains(model.name))
        return fail(QStringLiteral("the name is used twice"));
    m_names.insert(model.name);
    if (!isPlainText(model.showName))
        return fail(QStringLiteral("the show name is not plain printable ASCII"));
    if (!checkCounts(model) || !checkKeys(model) || !checkRings(model))
        return false;
    for (const ProductRow &row : model.products) {
        if (!checkProduct(row))
            return false;
    }
    return true;
}

bool ModelTableChecker::checkCounts(const ModelTraits &model)
{
    if (!isDeviceType(model.deviceType))
        return fail(QStringLiteral("device type %1 is unknown").arg(model.deviceType));
    if (model.penNum < 0 || model.penNum > kMaxPens)
        return fail(QStringLiteral("pen count outside 0 to %1").arg(kMaxPens));
    if (model.keyNum < 0 || model.keyNum > kMaxKeys)
        return fail(QStringLiteral("key count outside 0 to %1").arg(kMaxKeys));
    return true;
}

bool ModelTableChecker::checkKeys(const ModelTraits &model)
{
    if (model.keyActions.size() != model.keyNum || model.keyMotids.size() != model.keyNum)
        return fail(QStringLiteral("key actions or key numbers do not match the key count"));
    QSet<int> seen;
    for (const int motid : model.keyMotids) {
        if (motid < 1 || motid > kMaxKeys || seen.contains(motid))
            return fail(QStringLiteral("key number %1 is out of range or repeated").arg(motid));
        seen.insert(motid);
    }
    return true;
}

// A touch pad is the second ring and a pen roller takes the ring after the last wheel,
// so neither can share a device with a second wheel.
bool ModelTableChecker::checkRings(const ModelTraits &model)
{
    if (model.ringNum < 0 || model.ringNum > 2)
        return fail(QStringLiteral("ring count outside 0 to 2"));
    if (model.trackPad != 0 && model.ringNum != 1)
        return fail(QStringLiteral("a track pad needs exactly one wheel"));
    if (model.penRoller && (model.ringNum > 1 || model.trackPad != 0 || model.penNum == 0))
        return fail(QStringLiteral("a pen roller needs a pen and a free ring"));
    return true;
}

bool ModelTableChecker::checkProduct(const ProductRow &row)
{
    const QString pid =
        QStringLiteral("0x") + QStringLiteral("%1").arg(row.pid, 4, 16, QLatin1Char('0')).toUpper();
    if (m_pids.contains(row.pid))
        return fail(QStringLiteral("product %1 is listed twice").arg(pid));
    m_pids.insert(row.pid);
    ++m_rows;
    if (row.reportMode != 2 && row.reportMode != 4)
        return fail(QStringLiteral("product %1: report mode is neither 2 nor 4").arg(pid));
    if (row.collection > 1)
        return fail(QStringLiteral("product %1: collection is neither 0 nor 1").arg(pid));
    if (!row.dongleName.isEmpty() && !isPlainText(row.dongleName))
        return fail(QStringLiteral("product %1: dongle name is not plain ASCII").arg(pid));
    return true;
}

bool ModelTableChecker::fail(const QString &why)
{
    m_error = m_context.isEmpty() ? why : m_context + QStringLiteral(": ") + why;
    return false;
}
