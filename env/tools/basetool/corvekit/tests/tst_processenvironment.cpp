// The process environment primitive: "NAME=value" stores, "NAME=" removes, anything else fails.
#include "childprocess.h"

#include "corvekit/processenvironment_p.h"

#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

// Runs putEnvironment on CORVEKIT_ASSIGNMENT ("<null>" for a null text) from a buffer that is
// wiped afterwards, so a value that survives is the environment's own copy.
int runAssignment()
{
    const QByteArray text = qgetenv("CORVEKIT_ASSIGNMENT");
    int result = 0;
    if (text == "<null>") {
        result = corvekit::detail::putEnvironment(nullptr);
    } else {
        auto buffer = std::make_unique<char[]>(static_cast<size_t>(text.size()) + 1);
        std::memcpy(buffer.get(), text.constData(), static_cast<size_t>(text.size()) + 1);
        result = corvekit::detail::putEnvironment(buffer.get());
        std::memset(buffer.get(), 'x', static_cast<size_t>(text.size()));
    }
    report(QStringLiteral("result"), QString::number(result));
    const char *value = std::getenv("CORVEKIT_PROBE");
    report(QStringLiteral("value"), value ? QString::fromLatin1(value) : QStringLiteral("<unset>"));

    // A child started now inherits the change.
    const ChildResult grandchild =
        runProgram(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QStringLiteral("echo \"${CORVEKIT_PROBE-<unset>}\"")},
                   QProcessEnvironment::systemEnvironment());
    report(QStringLiteral("inherited"), QString::fromLatin1(grandchild.standardOutput).trimmed());
    return 0;
}

ScenarioTable scenarios()
{
    return {{QStringLiteral("assign"), runAssignment}};
}

} // namespace

class TestProcessEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void assignment_data();
    void assignment();
};

void TestProcessEnvironment::assignment_data()
{
    QTest::addColumn<QVariant>("before"); // null: CORVEKIT_PROBE unset in the child
    QTest::addColumn<QString>("assignment");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("after");

    QTest::newRow("store") << QVariant() << "CORVEKIT_PROBE=/opt/tools" << 0 << "/opt/tools";
    QTest::newRow("replace") << QVariant("old") << "CORVEKIT_PROBE=new" << 0 << "new";
    QTest::newRow("value with equal signs") << QVariant() << "CORVEKIT_PROBE=a=b" << 0 << "a=b";
    QTest::newRow("empty value removes") << QVariant("old") << "CORVEKIT_PROBE=" << 0 << "<unset>";
    QTest::newRow("removing an unset variable succeeds")
        << QVariant() << "CORVEKIT_PROBE=" << 0 << "<unset>";
    QTest::newRow("no equal sign fails") << QVariant("old") << "CORVEKIT_PROBE" << -1 << "old";
    QTest::newRow("empty name fails") << QVariant("old") << "=value" << -1 << "old";
    QTest::newRow("null text fails") << QVariant("old") << "<null>" << -1 << "old";
}

void TestProcessEnvironment::assignment()
{
    QFETCH(QVariant, before);
    QFETCH(QString, assignment);
    QFETCH(int, result);
    QFETCH(QString, after);

    QTemporaryDir home;
    QProcessEnvironment environment = cleanEnvironment(home.path());
    environment.remove(QStringLiteral("CORVEKIT_PROBE"));
    if (!before.isNull())
        environment.insert(QStringLiteral("CORVEKIT_PROBE"), before.toString());
    environment.insert(QStringLiteral("CORVEKIT_ASSIGNMENT"), assignment);

    const ChildResult child = runScenario(QStringLiteral("assign"), environment);
    QCOMPARE(child.exitCode, 0);
    QCOMPARE(child.value(QStringLiteral("result")).toInt(), result);
    QCOMPARE(child.value(QStringLiteral("value")), after);
    QCOMPARE(child.value(QStringLiteral("inherited")), after);
}

CORVEKIT_TEST_MAIN_WITH_SCENARIOS(TestProcessEnvironment, scenarios)
#include "tst_processenvironment.moc"
