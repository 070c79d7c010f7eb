#pragma once
#include "settingsrecords.h"
#include "textfield.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

inline QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QString testData(const QString &name)
{
    return QStringLiteral(PROFILES_TEST_DATA "/") + name;
}

// SCRIBORA_UPDATE_GOLDEN=1 rewrites the golden file instead; review the diff before committing.
inline void expectGolden(const QByteArray &actual, const QString &golden)
{
    if (qEnvironmentVariableIsSet("SCRIBORA_UPDATE_GOLDEN")) {
        QFile file(golden);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(actual);
    }
    EXPECT_EQ(actual.toStdString(), readAll(golden).toStdString()) << golden.toStdString();
}

// Hands each (name, field) pair, the name after `prefix`, to the visitor.
template <typename V> void fields(V &, const QString &) {}
template <typename V, typename T, typename... Rest>
void fields(V &visitor, const QString &prefix, const char *name, T &field, Rest &&...rest)
{
    visitor.field(prefix + name, field);
    fields(visitor, prefix, std::forward<Rest>(rest)...);
}

template <typename V> void visitKey(V &v, const QString &p, stKeyConfig &key)
{
    fields(v, p, "id", key.id, "func", key.func, "Show", key.Show, "Actid", key.Actid, "Motid",
           key.Motid);
}

template <typename V> void visitApp(V &v, const QString &p, _stAppConfigNode &app)
{
    fields(v, p, "path", app.path, "SelectID", app.SelectID);
    for (int i = 0; i < kPenCount; ++i) {
        stPenConfig &pen = app.Pen[i];
        const QString q = p + QString("Pen[%1].").arg(i);
        fields(v, q, "bRelativeCoords", pen.bRelativeCoords, "bTablePC", pen.bTablePC, "Speed",
               pen.Speed, "P0", pen.P0, "P1X", pen.P1X, "P1Y", pen.P1Y, "P2", pen.P2);
        for (int b = 0; b < kPenBtnCount; ++b)
            fields(v, q + QString("PenBtn[%1].").arg(b), "id", pen.PenBtn[b].id, "Actid",
                   pen.PenBtn[b].Actid, "func", pen.PenBtn[b].func);
    }
    for (int r = 0; r < kRingCount; ++r) {
        stRingConfig &ring = app.Ring[r];
        const QString q = p + QString("Ring[%1].").arg(r);
        fields(v, q, "id", ring.id, "mode", ring.mode, "type", ring.type, "Speed", ring.Speed);
        for (int i = 0; i < kRingItemCount; ++i)
            fields(v, q + QString("Item[%1].").arg(i), "id", ring.Item[i].id, "func",
                   ring.Item[i].func);
    }
    for (int k = 0; k < kKeyCount; ++k)
        visitKey(v, p + QString("Key[%1].").arg(k), app.Key[k]);
    for (int g = 0; g < kKeyGroupCount; ++g) {
        const QString q = p + QString("KeyGroup[%1].").arg(g);
        fields(v, q, "bEnable", app.KeyGroup[g].bEnable);
        for (int k = 0; k < kKeyCount; ++k)
            visitKey(v, q + QString("Key[%1].").arg(k), app.KeyGroup[g].Key[k]);
    }
}

template <typename V> void visitRecord(V &v, stTablet_XMLData &d)
{
    fields(v, "", "szPidName", d.szPidName, "DeviceControl", d.DeviceControl, "DeviceTrackPad",
           d.DeviceTrackPad, "SupportGroupKeys", d.SupportGroupKeys, "DeviceKeyDirection",
           d.DeviceKeyDirection, "DeviceRingNum", d.DeviceRingNum, "DeviceKeyNum", d.DeviceKeyNum,
           "DevicePenType", d.DevicePenType, "ScreenId", d.ScreenId, "SX", d.SX, "SY", d.SY, "SW",
           d.SW, "SH", d.SH, "TX", d.TX, "TY", d.TY, "TW", d.TW, "TH", d.TH, "Orientation",
           d.Orientation, "fKX", d.fKX, "fKY", d.fKY, "fXLC", d.fXLC, "fYLC", d.fYLC,
           "DisablePressure", d.DisablePressure, "DisableInfo", d.DisableInfo, "DisableQuickKey",
           d.DisableQuickKey, "DisableSlope", d.DisableSlope, "bBERectOn", d.bBERectOn, "BERect.x",
           d.BERect.x, "BERect.y", d.BERect.y, "BERect.w", d.BERect.w, "BERect.h", d.BERect.h,
           "DevicePenNum", d.DevicePenNum, "DeviceCurPenID", d.DeviceCurPenID, "PenMoveInTablet",
           d.PenMoveInTablet);
    for (int i = 0; i < kOrientationCount; ++i)
        fields(v, QString("OrientArea[%1].").arg(i), "X", d.OrientArea[i].X, "Y", d.OrientArea[i].Y,
               "W", d.OrientArea[i].W, "H", d.OrientArea[i].H);
    visitApp(v, "CommonAPP.", d.CommonAPP);
}

// The record as text: one "name=value" line for every field that is not zero.
class RecordText
{
public:
    template <typename T> void field(const QString &name, const T &value)
    {
        if (value != 0)
            m_lines << name + '=' + QString::number(value);
    }
    template <size_t N> void field(const QString &name, const char (&text)[N])
    {
        const QString value = fieldText(text);
        if (value.size() > 40)
            m_lines << QString("%1=%2 bytes: %3...%4")
                           .arg(name)
                           .arg(value.toUtf8().size())
                           .arg(value.left(8), value.right(2));
        else if (!value.isEmpty())
            m_lines << name + '=' + value;
    }
    void line(const QString &text) { m_lines << text; }
    QByteArray bytes() const { return m_lines.join('\n').toUtf8() + '\n'; }

private:
    QStringList m_lines;
};

// Sets the field a "name=value" line names; a text as long as its field gets no NUL.
class FieldSetter
{
public:
    explicit FieldSetter(const QString &line)
        : m_name(line.section('=', 0, 0)), m_value(line.section('=', 1))
    {
    }
    template <typename T> void field(const QString &name, T &value)
    {
        if (name == m_name && ++m_found)
            value = static_cast<T>(m_value.toDouble());
    }
    template <size_t N> void field(const QString &name, char (&text)[N])
    {
        if (name == m_name && ++m_found) {
            const QByteArray bytes = m_value.toUtf8();
            memset(text, 0, N);
            memcpy(text, bytes.constData(), std::min(N, size_t(bytes.size())));
        }
    }
    bool found() const { return m_found == 1; }

private:
    int m_found = 0;
    QString m_name;
    QString m_value;
};
