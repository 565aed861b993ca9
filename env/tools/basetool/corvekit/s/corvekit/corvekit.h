#ifndef CORVEKIT_CORVEKIT_H
#define CORVEKIT_CORVEKIT_H

// Everything the library offers, in one include.
#include "baseprjsettings.h"
#include "basepublic.h"
#include "baseqregularexpression.h"
#include "basesettings.h"
#include "basesystem.h"
#include "baseusrsettings.h"
#include "basguitoolnameinfo.h"
#include "commonlabelmapping.h"
#include "diagtrace.h"
#include "helpindexreader.h"
#include "profiler.h"
#include "profilersettings.h"

#endif
