#include "customkeyfunction.h"

#include "textfield.h"

#include <QDialog>

// The editor is built on its own branch; until it is in, a custom function cannot be chosen.
#if __has_include("hotkeywin.h")
#include "hotkeywin.h"
#define SCRIBORA_HAVE_HOTKEYWIN 1
#endif

namespace
{
constexpr int kPidDigits = 4;
constexpr int kHex = 16;
} // namespace

int productIdOf(const stTablet_XMLData &settings)
{
    return fieldText(settings.szPidName).right(kPidDigits).toInt(nullptr, kHex);
}

bool EditCustomKeyFunction(QWidget *parent, const stTablet_XMLData &settings, int pid,
                           QString &func)
{
#ifdef SCRIBORA_HAVE_HOTKEYWIN
    HotKeyWin editor(parent);
    editor.LoadForRingNumber(settings.DeviceRingNum, settings.DeviceTrackPad, pid);
    if (!func.isEmpty())
        editor.LoadCustomQString(func);
    if (editor.exec() != QDialog::Accepted)
        return false;
    editor.GetData(func);
    return true;
#else
    Q_UNUSED(parent)
    Q_UNUSED(settings)
    Q_UNUSED(pid)
    Q_UNUSED(func)
    return false;
#endif
}
