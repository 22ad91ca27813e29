// Fuzz target: a backup file restored and written out by the CSV and PDF writers.
#include "FuzzEntryPoints.h"

extern const FuzzEntryPoints::Target kFuzzTarget = FuzzEntryPoints::Target::Reports;
