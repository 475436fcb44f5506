// The tool without a viewer: where cpp-httplib or Chart.js was missing when it was built.
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/view.h"

namespace KPF_TOOL {

Outcome view(const ViewOptions&) {
  throw ToolError(Outcome::kRefused, "this kpf was built without its viewer",
                  "On Linux build it with libcpp-httplib-dev and libjs-chart.js installed.");
}

}  // namespace KPF_TOOL
