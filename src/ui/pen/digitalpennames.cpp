#include "digitalpennames.h"

const char *const tagDigitalPenName[kPenCount] = {
    "NORVA P-01 Pen", "NORVA P-02 Pen", "NORVA P-03 Pen", "NORVA P-04 Roller Pen",
    "Digital Pen5",   "Digital Pen6",   "Digital Pen7",   "Digital Pen8"};
