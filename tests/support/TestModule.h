// The test suite's own module: its classes register their types in it, as a host's would.
#pragma once

#include "runtime/ModuleDescriptor.h"

// Rows: "Probe", "Shape", "Circle", "Square", "Disc", "Tagged", "BracketParser", "FileName".
extern _eModuleDescriptor testModule;
