#include "childprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <cstdio>

QString ChildResult::reportLine(const QString &name) const
{
    const QRegularExpression line('^' + QRegularExpression::escape(name) + '=');
    return outputLines().filter(line).value(0);
}

QStringList ChildResult::lines(const QByteArray &text)
{
    QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    if (lines.last().isEmpty()) // the line break that ends the text
        lines.removeLast();
    return lines;
}

QProcessEnvironment cleanEnvironment(const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name :
         {"TOOLRTF", "FOUNDRY", "ZEKPROG_PATH", "SOLVANE_GROUP_SETTING_FILE", "TIVORANDEBUG",
          "ENABLE_GUI_PROFILER", "ENABLE_GUI_PROFILER_DETAIL", "GUI_PROFILER_SETTINGS",
          "GUI_PROFILER_TRACE", "GUI_PROFILER_TRACE_LIMIT", "CORVEKIT_TEST_SCENARIO",
          "QT_LOGGING_RULES", "QT_MESSAGE_PATTERN"})
        environment.remove(QString::fromLatin1(name));
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
    process.setWorkingDirectory(workingDirectory); // empty: this process's own
    process.start(program, arguments);
    if (!process.waitForStarted(30000))
        return {};
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(120000))
        process.kill();
    process.waitForFinished();
    return {process.exitCode(), process.exitStatus() != QProcess::NormalExit,
            process.readAllStandardOutput(), process.readAllStandardError()};
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
    // QFile::copy keeps the permissions, so the copy can run; it refuses to overwrite a file.
    const QString source = QCoreApplication::applicationFilePath();
    const QString target = directory + QLatin1Char('/') + QFileInfo(source).fileName();
    return QDir().mkpath(directory) && QFile::copy(source, target) ? target : QString();
}

void report(const char *name, const QString &value)
{
    std::printf("%s=%s\n", name, value.toUtf8().constData());
    std::fflush(stdout);
}

bool writeFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).absolutePath()) &&
           file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size();
}
