#include "basesystem.h"

#include "basesettings.h"
#include "basesystem_p.h"

// Extensions and name filters of file types for the tools' file dialogs; the types and their
// extensions are data of the installation's settings, "File_Extension/<type>".

QList<QString> BaseSystem::getFileExtensions(const char *fileType)
{
    BaseSettings settings{QString()};
    bool found = false;
    return corvekit_private::fileExtensions(settings, QString(fileType), found);
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

namespace corvekit_private {

QString fileExtensionKey(const QString &fileType)
{
    return QStringLiteral("File_Extension/%1").arg(fileType);
}

QList<QString> fileExtensions(BaseSettings &settings, const QString &fileType, bool &found)
{
    const QVariant value = settings.getSetting(fileExtensionKey(fileType), QVariant());
    found = !value.isNull();
    if (!found)
        return {};
    // One extension reads as a text, several as a list.
    return value.toStringList();
}

} // namespace corvekit_private
