#ifndef CORVEKIT_TESTS_SAMPLEINSTALLATION_H
#define CORVEKIT_TESTS_SAMPLEINSTALLATION_H

#include "childprocess.h"

#include <QTemporaryDir>

#include <sys/stat.h>

// A throw-away installation for child scenarios: an install root with its data folder, a home
// with the user level, and a project folder. Children get TOOLRTF, HOME and the project path
// (CORVEKIT_TEST_PROJECT, with its closing slash) through environment().
class SampleInstallation
{
public:
    QString root() const { return path(QStringLiteral("root")); }
    QString home() const { return path(QStringLiteral("home")); }
    QString project() const { return path(QStringLiteral("project/")); }
    QString path(const QString &relative) const { return m_dir.filePath(relative); }

    QProcessEnvironment environment() const
    {
        QProcessEnvironment environment = cleanEnvironment(home());
        environment.insert(QStringLiteral("TOOLRTF"), root());
        environment.insert(QStringLiteral("CORVEKIT_TEST_PROJECT"), project());
        return environment;
    }

    bool isValid() const
    {
        return m_dir.isValid() && QDir().mkpath(root() + QStringLiteral("/data")) &&
               QDir().mkpath(home()) && QDir().mkpath(project());
    }

    // Placeholders in a row: $R is the application's root (app), $T the install root, $S, $U
    // and $J the system, user and project levels, $V the version file, $M the suite's folder in
    // the user's settings area and $G a group settings file.
    QString expand(QString text) const
    {
        return text.replace("$R", path(QStringLiteral("app")))
            .replace("$T", root())
            .replace("$S", root() + "/data/.setting.ini")
            .replace("$U", home() + "/.config/Meravex/OstraneNG/.setting.ini")
            .replace("$J", project() + ".setting.ini")
            .replace("$V", root() + "/data/zeksys.ini")
            .replace("$M", home() + QStringLiteral("/.config/Meravex"))
            .replace("$G", path(QStringLiteral("team.ini")));
    }

    // Applies a row's set-up, expanded, its entries split at ";": "NAME=value" sets a variable of
    // the child's \a environment and "NAME" removes it; "path=text" writes a file, a path ending in
    // "/" makes a folder and a path alone a FIFO. False if one of them cannot be made.
    bool apply(const QString &setup, QProcessEnvironment &environment) const
    {
        bool made = true;
        for (const QString &entry : setup.split(';', Qt::SkipEmptyParts)) {
            const QString name = entry.section('=', 0, 0);
            if (!name.startsWith('/'))
                entry.contains('=') ? environment.insert(name, entry.section('=', 1))
                                    : environment.remove(name);
            else if (entry.endsWith('/'))
                made = made && QDir().mkpath(name);
            else if (!entry.contains('='))
                made = made && mkfifo(QFile::encodeName(name).constData(), 0600) == 0;
            else
                made = made && writeFile(name, entry.section('=', 1).toUtf8());
        }
        return made;
    }

private:
    QTemporaryDir m_dir;
};

#endif
