#pragma once

#include "settingsrecords.h"

// The pens' names by pen index; index 3 is the pen with a roller ring.
extern const char *const tagDigitalPenName[kPenCount];
