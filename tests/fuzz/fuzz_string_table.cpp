// Fuzz target: the parser of the built-in Localizable.strings tables.
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::StringTable;
