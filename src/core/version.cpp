#include "orucv.h"

namespace {

const OruLibVersion kVersion = {2, 0, 1, 24, {'a', '6', 0, 0}, "orucva6", "v2.0 gold SP1", "Aug 23 2002"};

}  // namespace

extern "C" const OruLibVersion* orucvGetLibVersion(void) { return &kVersion; }
