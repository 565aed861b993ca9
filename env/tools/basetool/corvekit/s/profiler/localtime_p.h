#ifndef CORVEKIT_LOCALTIME_P_H
#define CORVEKIT_LOCALTIME_P_H

#include <ctime>

namespace tivoran::corvekit {

// Local time of \a time into \a result, through the platform's reentrant call: the shared
// buffer of std::localtime could be overwritten by any other thread.
void localTime(std::time_t time, std::tm &result);

} // namespace tivoran::corvekit

#endif
