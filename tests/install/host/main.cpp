// A host application as a customer writes one: it links the installed kit
// and uses a class from each of its three libraries.
#include <Brightmere/core/WifiTestResult.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/resources/FrameworkBundle.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir dir;
    Brightmere::UserDefaults defaults(dir.filePath(QStringLiteral("host.ini")));
    defaults.setObject(WifiTestResult::archiveList({WifiTestResult::create(42.5)}), QStringLiteral("spots"));
    const auto spots = WifiTestResult::unarchiveList(defaults.dataForKey(QStringLiteral("spots")));
    if (!spots || spots->size() != 1 || spots->first()->speedInMbps() != 42.5)
        return 1;
    QTextStream(stdout) << "BrightmereMobileSDKUI " << Brightmere::FrameworkBundle::shortVersion() << '\n';
    return 0;
}
