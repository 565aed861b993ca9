#ifndef CORVEKIT_PROCESSENVIRONMENT_P_H
#define CORVEKIT_PROCESSENVIRONMENT_P_H

namespace corvekit::detail {

// Stores or removes one variable of the process environment, given "NAME=value" or "NAME=".
// The environment keeps a copy of its own, so the caller's text may go away at once. The change
// is seen by getenv at once and by child processes started later. Returns 0 on success and -1 on
// failure: a null text, a text without "=", an empty name, or a refusal of the system.
int putEnvironment(const char *assignment);

} // namespace corvekit::detail

#endif
