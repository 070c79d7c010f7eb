#pragma once

#include "modeltable.h"

#include <QByteArray>

// The udev rules that let the desktop's user, and the group plugdev, open what the driver
// needs: the USB node of every catalogued product and /dev/uinput.
class UdevRulesWriter
{
public:
    static QByteArray text(const ModelTable &table);

private:
    static QByteArray productRule(quint32 vendor, quint32 pid);
};
