#include "basesystem.h"

#include "basesettings.h"

// Extensions and name filters of file types for the tools' file dialogs; the types and their
// extensions are data of the installation's settings, "File_Extension/<type>".

QList<QString> BaseSystem::getFileExtensions(const char *fileType)
{
    BaseSettings settings{QString()};
    const QVariant value =
        settings.getSetting(QStringLiteral("File_Extension/%1").arg(QString(fileType)), QVariant());
    if (value.isNull())
        return {};
    // One extension reads as a text, several as a list.
    return value.toStringList();
}

QString BaseSystem::getFileFilter(const char *fileType, const char *description)
{
    QString filter =
        description ? QString(description) : QStringLiteral("%1 Files").arg(QString(fileType));
    filter += QLatin1String(" (");
    const QList<QString> extensions = getFileExtensions(fileType);
    for (const QString &extension : extensions)
        filter += QLatin1String("*.") + extension + QLatin1Char(' ');
    filter = filter.trimmed();
    filter += QLatin1Char(')');
    return filter;
}
