#pragma once

// Orders of construction at load, for init_priority: lower is built first, and 101 is the
// first a program may use. The trace client comes first, then the objects that need it
// before any ordinary one is built.
constexpr int kInitTraceClient = 101;
constexpr int kInitAfterTraceClient = 102;
