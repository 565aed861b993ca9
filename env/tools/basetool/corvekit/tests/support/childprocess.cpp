#include "childprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <cstdio>

QMap<QString, QString> ChildResult::values() const
{
    QMap<QString, QString> result;
    for (const QString &line : outputLines()) {
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals > 0)
            result.insert(line.left(equals), line.mid(equals + 1));
    }
    return result;
}

static QStringList splitLines(const QByteArray &bytes)
{
    QStringList lines = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QStringList ChildResult::outputLines() const
{
    return splitLines(standardOutput);
}

QStringList ChildResult::errorLines() const
{
    return splitLines(standardError);
}

QProcessEnvironment cleanEnvironment(const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name :
         {"TOOLRTF", "FOUNDRY", "ZEKPROG_PATH", "SOLVANE_GROUP_SETTING_FILE", "TIVORANDEBUG",
          "ENABLE_GUI_PROFILER", "ENABLE_GUI_PROFILER_DETAIL", "GUI_PROFILER_SETTINGS",
          "CORVEKIT_TEST_SCENARIO", "QT_LOGGING_RULES", "QT_MESSAGE_PATTERN"}) {
        environment.remove(QString::fromLatin1(name));
    }
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QLatin1String("/.config"));
    return environment;
}

ChildResult runProgram(const QString &program, const QStringList &arguments,
                       const QProcessEnvironment &environment, const QString &workingDirectory,
                       const QByteArray &input)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    if (!workingDirectory.isEmpty())
        process.setWorkingDirectory(workingDirectory);
    process.start(program, arguments);
    ChildResult result;
    if (!process.waitForStarted(30000))
        return result;
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
    }
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.standardOutput = process.readAllStandardOutput();
    result.standardError = process.readAllStandardError();
    return result;
}

ChildResult runScenario(const QString &scenario, const QProcessEnvironment &environment,
                        const QString &program, const QString &workingDirectory)
{
    QProcessEnvironment childEnvironment = environment;
    childEnvironment.insert(QStringLiteral("CORVEKIT_TEST_SCENARIO"), scenario);
    return runProgram(program.isEmpty() ? QCoreApplication::applicationFilePath() : program, {},
                      childEnvironment, workingDirectory);
}

QString placeApplication(const QString &directory)
{
    QDir().mkpath(directory);
    const QString source = QCoreApplication::applicationFilePath();
    QString target = directory + QLatin1Char('/') + QFileInfo(source).fileName();
    QFile::remove(target);
    if (!QFile::copy(source, target))
        return QString();
    QFile::setPermissions(target, QFile::permissions(source));
    return target;
}

void report(const QString &name, const QString &value)
{
    std::printf("%s=%s\n", name.toUtf8().constData(), value.toUtf8().constData());
    std::fflush(stdout);
}

bool writeFile(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(text) == text.size();
}

bool runChildScenario(const ScenarioTable &scenarios, int &exitCode)
{
    const QString name = qEnvironmentVariable("CORVEKIT_TEST_SCENARIO");
    if (name.isEmpty())
        return false;
    const auto scenario = scenarios.find(name);
    if (scenario == scenarios.end()) {
        std::fprintf(stderr, "unknown scenario %s\n", qPrintable(name));
        exitCode = 99;
        return true;
    }
    exitCode = (*scenario)();
    return true;
}
