#include "modeltablereader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

bool ModelTableReader::read(const QString &path, ModelTable &table)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot open %1: %2").arg(path, file.errorString()));
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (doc.isNull())
        return fail(QStringLiteral("%1: %2 at offset %3")
                        .arg(path, parseError.errorString())
                        .arg(parseError.offset));
    if (!doc.isObject())
        return fail(QStringLiteral("%1: the top level is not an object").arg(path));
    return parseRoot(doc.object(), table);
}

bool ModelTableReader::parseRoot(const QJsonObject &root, ModelTable &table)
{
    m_context = QStringLiteral("top level");
    if (!hexField(root, QStringLiteral("vendor"), table.vendor) ||
        !textField(root, QStringLiteral("configVersion"), table.configVersion) ||
        !textField(root, QStringLiteral("copyright"), table.copyright))
        return false;
    const QJsonObject defaults = root.value(QStringLiteral("defaults")).toObject();
    QVector<int> defaultKeys;
    if (!intList(defaults.value(QStringLiteral("keyActions")), QStringLiteral("keyActions"),
                 defaultKeys) ||
        !intList(defaults.value(QStringLiteral("penButtons")), QStringLiteral("penButtons"),
                 table.penButtons))
        return false;
    const QJsonArray models = root.value(QStringLiteral("models")).toArray();
    for (const QJsonValue &value : models) {
        ModelTraits model;
        if (!parseModel(value.toObject(), defaultKeys, model))
            return false;
        table.models.append(model);
    }
    return true;
}

bool ModelTableReader::parseModel(const QJsonObject &obj, const QVector<int> &defaultKeys,
                                  ModelTraits &model)
{
    m_context = QStringLiteral("a model");
    if (!textField(obj, QStringLiteral("name"), model.name))
        return false;
    m_context = QStringLiteral("model %1").arg(model.name);
    if (!textField(obj, QStringLiteral("showName"), model.showName) || !parseTraits(obj, model) ||
        !parseKeyLists(obj, defaultKeys, model))
        return false;
    const QJsonArray products = obj.value(QStringLiteral("products")).toArray();
    if (products.isEmpty())
        return fail(QStringLiteral("has no products"));
    for (const QJsonValue &value : products) {
        ProductRow row;
        if (!parseProduct(value.toObject(), row))
            return false;
        model.products.append(row);
    }
    return true;
}

bool ModelTableReader::parseTraits(const QJsonObject &obj, ModelTraits &model)
{
    model.penRoller = obj.value(QStringLiteral("penRoller")).toBool(false);
    return intField(obj, QStringLiteral("deviceType"), model.deviceType) &&
           intField(obj, QStringLiteral("keys"), model.keyNum) &&
           intField(obj, QStringLiteral("rings"), model.ringNum) &&
           intField(obj, QStringLiteral("trackPad"), model.trackPad) &&
           intField(obj, QStringLiteral("pens"), model.penNum) &&
           intField(obj, QStringLiteral("penType"), model.penType) &&
           intField(obj, QStringLiteral("groupKeys"), model.groupKeys) &&
           intField(obj, QStringLiteral("control"), model.control) &&
           intField(obj, QStringLiteral("keyDirection"), model.keyDirection);
}

// Keys without their own lists take the default actions and report numbers 1, 2, 3...
bool ModelTableReader::parseKeyLists(const QJsonObject &obj, const QVector<int> &defaultKeys,
                                     ModelTraits &model)
{
    const QJsonValue actions = obj.value(QStringLiteral("keyActions"));
    const QJsonValue motids = obj.value(QStringLiteral("keyMotids"));
    if (actions.isUndefined())
        model.keyActions = defaultKeys.mid(0, model.keyNum);
    else if (!intList(actions, QStringLiteral("keyActions"), model.keyActions))
        return false;
    if (!motids.isUndefined())
        return intList(motids, QStringLiteral("keyMotids"), model.keyMotids);
    for (int i = 1; i <= model.keyNum; ++i)
        model.keyMotids.append(i);
    return true;
}

bool ModelTableReader::parseProduct(const QJsonObject &obj, ProductRow &row)
{
    int interfaceNumber = 0;
    int collection = 0;
    int mode = 0;
    if (!hexField(obj, QStringLiteral("pid"), row.pid) ||
        !intField(obj, QStringLiteral("interface"), interfaceNumber) ||
        !intField(obj, QStringLiteral("collection"), collection) ||
        !intField(obj, QStringLiteral("mode"), mode))
        return false;
    if (interfaceNumber < 0 || collection < 0 || mode < 0 || mode > 0xFFFF)
        return fail(QStringLiteral("product 0x%1 has a negative or oversized column")
                        .arg(row.pid, 4, 16, QLatin1Char('0')));
    row.interfaceNumber = static_cast<quint32>(interfaceNumber);
    row.collection = static_cast<quint32>(collection);
    row.reportMode = static_cast<quint16>(mode);
    row.dongleName = obj.value(QStringLiteral("dongleName")).toString();
    return true;
}

bool ModelTableReader::intField(const QJsonObject &obj, const QString &key, int &out)
{
    const QJsonValue value = obj.value(key);
    if (!value.isDouble() || value.toDouble() != value.toInt())
        return fail(QStringLiteral("field \"%1\" is missing or not an integer").arg(key));
    out = value.toInt();
    return true;
}

bool ModelTableReader::intList(const QJsonValue &value, const QString &what, QVector<int> &out)
{
    if (!value.isArray())
        return fail(QStringLiteral("\"%1\" is not a list").arg(what));
    for (const QJsonValue &item : value.toArray()) {
        if (!item.isDouble() || item.toDouble() != item.toInt())
            return fail(QStringLiteral("\"%1\" holds a value that is not an integer").arg(what));
        out.append(item.toInt());
    }
    return true;
}

// JSON has no hexadecimal numbers; ids are written as "0x5A3C" to match the USB listings.
bool ModelTableReader::hexField(const QJsonObject &obj, const QString &key, quint32 &out)
{
    const QString text = obj.value(key).toString();
    bool ok = false;
    out = text.midRef(2).toUInt(&ok, 16);
    if (!text.startsWith(QLatin1String("0x")) || text.size() > 6 || !ok)
        return fail(QStringLiteral("field \"%1\" is not a 16-bit id like \"0x5A3C\"").arg(key));
    return true;
}

bool ModelTableReader::textField(const QJsonObject &obj, const QString &key, QString &out)
{
    out = obj.value(key).toString();
    if (out.isEmpty())
        return fail(QStringLiteral("field \"%1\" is missing or empty").arg(key));
    return true;
}

bool ModelTableReader::fail(const QString &why)
{
    m_error = m_context.isEmpty() ? why : m_context + QStringLiteral(": ") + why;
    return false;
}
