// Fuzz target: the format engine, with format texts and arguments from the fuzzer.
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::Format;
