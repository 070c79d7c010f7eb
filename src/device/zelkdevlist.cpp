#include "zelkdevice.h"

// The rows are generated from data/models.json, which also yields the profile sections.
const ZelkDevice zelkDevList[kCatalogueSize] = {
#include "zelkdevlist.inc"
};
