// A plug-in: a shared library whose classes register with the host's registry when it is
// loaded. It links none of the library; its references resolve to the host program's.
#include "runtime/registry_classes.hpp"

namespace tarnvik::testing {

struct PlugInExporter : Base {
  TARNVIK_CLASS(PlugInExporter)
};

struct PlugInHelper : Object {
  TARNVIK_CLASS(PlugInHelper)
};

TARNVIK_DEFINE_CLASS(PlugInExporter, Base)
TARNVIK_DEFINE_CLASS(PlugInHelper, Object)

}  // namespace tarnvik::testing
