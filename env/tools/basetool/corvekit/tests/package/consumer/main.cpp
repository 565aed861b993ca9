// A tool of the suite in miniature: it sets up the environment and reads a setting.
#include <corvekit/corvekit.h>

#include <QCoreApplication>
#include <QVariant>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    BaseSystem::initializeSystem();
    BaseSettings settings;
    const QVariant value = settings.getSetting(QStringLiteral("ANY_KEY"), QStringLiteral("none"));
    diagTrace("consumer ran", "CONSUMER");
    std::printf("data: %s\nsetting: %s\n", qPrintable(BaseSystem::getDataPath().path()),
                qPrintable(value.toString()));
    return 0;
}
