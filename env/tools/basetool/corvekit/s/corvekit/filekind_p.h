#ifndef CORVEKIT_FILEKIND_P_H
#define CORVEKIT_FILEKIND_P_H

#include <QFileInfo>

// A FIFO, a socket or a device. QSettings opens whatever path it is given for reading, and a FIFO
// with no writer blocks that open() forever, so a file the library checks before handing it on
// counts as unreadable when it is one of these.
inline bool isSpecialFile(const QFileInfo &info)
{
    return info.exists() && !info.isFile() && !info.isDir();
}

#endif
