#pragma once

#include <QString>
#include <QStringList>

// Where the engine and the devices send on-screen tips. The window's tip implements it;
// both calls are made from reader threads and must be safe there.
class CTipSink
{
public:
    virtual ~CTipSink() = default;

    virtual void EmitInfo(QString text) = 0;
    virtual void EmitRingLrcInfo(QStringList names, int selected) = 0;
};
