#ifndef CORVEKIT_TESTS_SAMPLEINSTALLATION_H
#define CORVEKIT_TESTS_SAMPLEINSTALLATION_H

#include "childprocess.h"

#include <QTemporaryDir>

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

    QString systemFile() const { return root() + QStringLiteral("/data/.setting.ini"); }
    QString userFile() const { return home() + "/.config/Meravex/OstraneNG/.setting.ini"; }
    QString projectFile() const { return project() + QStringLiteral(".setting.ini"); }
    QString versionFile() const { return root() + QStringLiteral("/data/zeksys.ini"); }

    bool setSystem(const QByteArray &text) const { return writeFile(systemFile(), text); }
    bool setProject(const QByteArray &text) const { return writeFile(projectFile(), text); }

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

private:
    QTemporaryDir m_dir;
};

#endif
