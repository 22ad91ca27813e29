// Fuzz target: the decoder of the saved spots-set store (title -> set dictionary).
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::SpotsStore;
