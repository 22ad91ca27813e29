// Fuzz target: the bundle-list answer, from raw bytes through JSON to the manager.
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::BundleInfo;
