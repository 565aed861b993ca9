#ifndef CORVEKIT_TOOL_DATAOUTPUT_P_H
#define CORVEKIT_TOOL_DATAOUTPUT_P_H

#include <cstdio>

/*!
 * Duplicates the standard output descriptor into a stream of its own and points the standard
 * output descriptor at standard error. Returns the new stream, or null (nothing changed) when the
 * platform refuses.
 */
FILE *moveStandardOutputAside();

#endif
