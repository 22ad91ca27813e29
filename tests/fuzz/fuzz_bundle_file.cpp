// Fuzz target: the localisation manager's cache-file parser (bundle_en, bundle_user).
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::BundleFile;
