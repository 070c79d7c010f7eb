#include "customkeyfunction.h"

#include <QDialog>

#include "hotkeywin.h"

namespace
{
constexpr int kPidDigits = 4;
constexpr int kHex = 16;
} // namespace

int productIdOf(const QString &pidString)
{
    return pidString.right(kPidDigits).toInt(nullptr, kHex);
}

bool EditCustomKeyFunction(QWidget *parent, const stTablet_XMLData &settings, int pid,
                           QString &func)
{
    HotKeyWin editor(parent);
    editor.LoadForRingNumber(settings.DeviceRingNum, settings.DeviceTrackPad, pid);
    if (!func.isEmpty())
        editor.LoadCustomQString(func);
    if (editor.exec() != QDialog::Accepted)
        return false;
    editor.GetData(func);
    return true;
}
