#ifndef CORVEKIT_CORVEKIT_H
#define CORVEKIT_CORVEKIT_H

// Everything the library offers, in one include.
#include "basesettings.h"
#include "basesystem.h"
#include "diagtrace.h"
#include "helpindexreader.h"

#endif
