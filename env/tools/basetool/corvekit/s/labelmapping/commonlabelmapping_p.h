#ifndef CORVEKIT_COMMONLABELMAPPING_P_H
#define CORVEKIT_COMMONLABELMAPPING_P_H

#include <QtGlobal>

namespace corvekit_labels {

struct LabelRow
{
    const char *key;
    const char *text; // source text of the translation, context "QObject"
};

// In the order of comparison. The tool lists the table from here too.
inline constexpr LabelRow rows[] = {
    {"CREATE_REGION", QT_TR_NOOP("Create New REGION")},
    {"CREATE_CLKREGION", QT_TR_NOOP("Create New CLOCK REGION")},
    {"CREATE_UGROUP", QT_TR_NOOP("Create New UGROUP")},
    {"EDIT_REGION", QT_TR_NOOP("Edit REGION")},
    {"EDIT_CLKREGION", QT_TR_NOOP("Edit CLOCK REGION")},
    {"EDIT_UGROUP", QT_TR_NOOP("Edit UGROUP")},
    {"REMOVE_REGION", QT_TR_NOOP("Remove REGION")},
    {"REMOVE_CLKREGION", QT_TR_NOOP("Remove CLOCK REGION")},
    {"REMOVE_UGROUP", QT_TR_NOOP("Remove UGROUP")},
    {"PROHIBIT_SITE", QT_TR_NOOP("PROHIBIT Site")},
    {"PROHIBIT_PIN", QT_TR_NOOP("PROHIBIT Pin")},
    {"LOCATE_SITE", QT_TR_NOOP("Set LOCATE Preference")},
    {"SHOW_IN", QT_TR_NOOP("Show in")},
    {"LOGICBLKVIEW", QT_TR_NOOP("Logic Block View")},
    {"DISPLAY_NCD", QT_TR_NOOP("Display Placement")},
    {"DISPLAY_PREF", QT_TR_NOOP("Display User Preferences")},
};

} // namespace corvekit_labels

#endif
