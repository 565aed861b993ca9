#ifndef CORVEKIT_TIMELINEPLATFORM_P_H
#define CORVEKIT_TIMELINEPLATFORM_P_H

#include <cstdint>

namespace tivoran::corvekit {

// The ids a timeline event carries, as the system's own tools show them.
std::uint64_t currentProcessId();
std::uint64_t currentThreadId();

// Calls \a handler in the child of every later fork, before the child goes on. A forked child
// holds a copy of its parent's unwritten timeline, which must never reach the parent's file.
// Where processes are not forked, this does nothing.
void callInForkedChild(void (*handler)());

} // namespace tivoran::corvekit

#endif
