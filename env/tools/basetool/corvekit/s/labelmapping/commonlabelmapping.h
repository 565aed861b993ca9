#ifndef CORVEKIT_COMMONLABELMAPPING_H
#define CORVEKIT_COMMONLABELMAPPING_H

#include "corvekit_export.h"

#include <QString>

/*!
 * The text shown for a label key of the placement and floorplan views, such as "CREATE_REGION"
 * or "SHOW_IN". The whole key is compared, ASCII letters without regard to case ("show_in"
 * matches, "SHOW" and "SHOW_IN_X" do not). The text comes through QObject::tr, so a translation
 * installed for the context "QObject" is used.
 *
 * Returns a null QString for a key that is not in the table, including an empty or null key.
 */
CORVEKIT_EXPORT QString commonLabelMapping(const char *key);

#endif
