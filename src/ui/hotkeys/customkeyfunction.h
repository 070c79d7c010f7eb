#pragma once

#include "settingsrecords.h"

#include <QString>

class QWidget;

// The product id from a device's "PID_%04X" name.
int productIdOf(const QString &pidString);

// Opens the key function editor (HotKeyWin) for a key of the device with product id `pid`,
// on `func` when it is not empty. True, with the new function string in `func`, when the user
// confirms.
bool EditCustomKeyFunction(QWidget *parent, const stTablet_XMLData &settings, int pid,
                           QString &func);
