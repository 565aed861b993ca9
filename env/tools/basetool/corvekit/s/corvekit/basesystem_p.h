#ifndef CORVEKIT_BASESYSTEM_P_H
#define CORVEKIT_BASESYSTEM_P_H

#include <QDate>
#include <QString>
#include <QTime>

namespace corvekit::detail {

// The build stamp parsers behind BaseSystem::GetDate, GetTime and findMonth.

//! "Apr 11 2025" split at \a separator (runs count as one), the month first or second; a null
//! date unless there are three parts and one of the first two is a month.
QDate parseStampDate(const char *date, char separator);
//! "01:22:07" split at \a separator (empty parts kept, so they read as 0); invalid unless there
//! are three parts.
QTime parseStampTime(const char *time, char separator);
//! 1 to 12 for an English or the default locale's short month name in any case, else -1.
int monthNumber(QString month);

} // namespace corvekit::detail

#endif
