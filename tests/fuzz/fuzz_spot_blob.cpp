// Fuzz target: the decoder of a saved set's nested spot archive.
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::SpotBlob;
