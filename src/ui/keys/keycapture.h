#pragma once

#include "cvtkeycode.h"

class QKeyEvent;

// The Super key never reaches the key table; the engine gets it as this fixed token.
constexpr char kSuperToken[] = "125:125";

// The token and name of one key press, from the event's Qt key and native codes; the one
// place where the keyboard editors turn a press into a token.
CapturedKey captureKey(const QKeyEvent &event, const QString &combination);

// Shift, Control, Meta (Super) and Alt: they open a combination instead of ending one.
bool isModifierKey(int qtKey);
