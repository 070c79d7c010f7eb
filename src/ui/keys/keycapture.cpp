#include "keycapture.h"

#include <QDebug>
#include <QKeyEvent>

CapturedKey captureKey(const QKeyEvent &event, const QString &combination)
{
    CapturedKey key = cvtKeyCode::captureKey(event.key(), event.nativeScanCode(),
                                             event.nativeVirtualKey(), combination);
    if (event.key() == Qt::Key_Meta)
        key.token = QLatin1String(kSuperToken);
    qDebug() << "keyCode:" << event.key() << "i_nativeSC:" << event.nativeScanCode()
             << " i_nativeVK:" << event.nativeVirtualKey() << "VK:SC" << key.token;
    return key;
}

bool isModifierKey(int qtKey)
{
    return qtKey >= Qt::Key_Shift && qtKey <= Qt::Key_Alt;
}
