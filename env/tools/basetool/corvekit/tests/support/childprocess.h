#ifndef CORVEKIT_TESTS_CHILDPROCESS_H
#define CORVEKIT_TESTS_CHILDPROCESS_H

#include <QMap>
#include <QProcessEnvironment>
#include <QStringList>

#include <functional>

// Behaviour that depends on the environment, the application's location or process-wide state
// is tested in a child: the test program runs itself again with CORVEKIT_TEST_SCENARIO set, and
// the child runs one named scenario and reports on standard output.

struct ChildResult
{
    int exitCode = -1;
    bool crashed = false;
    QByteArray standardOutput;
    QByteArray standardError;

    // The line "name=value" that a scenario printed with report(\a name), or an empty text.
    QString reportLine(const QString &name) const;
    QStringList outputLines() const { return lines(standardOutput); }
    QStringList errorLines() const { return lines(standardError); }
    static QStringList lines(const QByteArray &text);
};

// An environment with nothing of the suite in it, HOME and XDG_CONFIG_HOME inside \a home.
QProcessEnvironment cleanEnvironment(const QString &home);

// Runs \a scenario in a child from \a program (by default this test program).
ChildResult runScenario(const QString &scenario, const QProcessEnvironment &environment,
                        const QString &program = QString(),
                        const QString &workingDirectory = QString());

// Runs any program with \a arguments and \a environment; optional \a input goes to its stdin.
ChildResult runProgram(const QString &program, const QStringList &arguments,
                       const QProcessEnvironment &environment,
                       const QString &workingDirectory = QString(),
                       const QByteArray &input = QByteArray());

// Copies this test program to \a directory (created as needed) and returns the copy's path, so
// that a child's applicationDirPath() is that directory; an empty text if that fails.
QString placeApplication(const QString &directory);

// In a child: prints "name=value" for the parent to read.
void report(const char *name, const QString &value);

// Writes \a text to \a path, making its folders; false on an error.
bool writeFile(const QString &path, const QByteArray &text);

using ScenarioTable = QMap<QString, std::function<int()>>;

// A main() for a Qt Test class whose tests start children running \a scenarios: a child runs the
// one that CORVEKIT_TEST_SCENARIO names and exits with its code (99 for a name the table lacks).
#define CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestClass, scenarios)                                    \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        QCoreApplication application(argc, argv);                                                  \
        const QString scenario = qEnvironmentVariable("CORVEKIT_TEST_SCENARIO");                   \
        if (!scenario.isEmpty())                                                                   \
            return scenarios().value(scenario, [] { return 99; })();                               \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

#endif
