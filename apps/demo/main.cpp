// The demo host: how a newcomer runs the kit. It embeds the kit the way a
// customer's application does: a navigation stack with the Fairzone test
// screen at its root, measuring the simulated home network unless
// BRIGHTMERE_DOWNLOAD_URL names a file to measure for real. The customer's
// name and password come from BRIGHTMERE_CUSTOMER and BRIGHTMERE_PASSWORD;
// the password goes to the screen and nowhere else. With --screenshot it
// starts a test, renders its window to a PNG a few seconds later and exits,
// which is how it runs where there is no display. When BRIGHTMERE_I18N_URL (or the core
// library's BRIGHTMERE_SERVER_URL) names a localisation service, the texts
// are refreshed from it at start.
#include "core/BMSDKBackend.h"
#include "core/BMSDKRestServiceManager.h"
#include "i18n/BMI18NManager.h"
#include "platform/views/NavigationController.h"
#include "session/BMWifiScanVC.h"
#include "storyboard/BMSDKUIStoryboard.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>
#include <QTimer>
#include <QUrl>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("BrightmereDemo"));
    QApplication::setOrganizationName(QStringLiteral("Brightmere"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Demo host of the BrightmereMobileSDKUI kit"));
    parser.addHelpOption();
    QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                  QStringLiteral("Run a few seconds, render the window to <file> (PNG) and exit."),
                                  QStringLiteral("file"));
    parser.addOption(screenshot);
    parser.process(app);

    const QString downloadUrl = qEnvironmentVariable("BRIGHTMERE_DOWNLOAD_URL");
    if (!downloadUrl.isEmpty()) {
        BMSDKBackend::setKind(BMSDKBackend::Kind::System);
        BMSDKBackend::setSystemDownloadUrl(QUrl(downloadUrl));
    }

    const QString i18nUrl = qEnvironmentVariable("BRIGHTMERE_I18N_URL");
    if (!i18nUrl.isEmpty())
        BMSDKRestServiceManager::setBrightmereServerURL(i18nUrl);
    if (!i18nUrl.isEmpty() || !qEnvironmentVariable("BRIGHTMERE_SERVER_URL").isEmpty())
        BMI18NManager::sharedInstance()->updateBundleTexts();

    // Once, before any screen: the saved-results screens are reached by segue.
    BMSDKUIStoryboard::registerSegues();
    auto *scan = new BMWifiScanVC;
    const QString customer = qEnvironmentVariable("BRIGHTMERE_CUSTOMER");
    scan->setSdkCustomer(customer.isEmpty() ? QStringLiteral("demo") : customer);
    scan->setSdkPassword(qEnvironmentVariable("BRIGHTMERE_PASSWORD"));
    Brightmere::NavigationController navigation(scan);
    navigation.setWindowTitle(QStringLiteral("Brightmere demo"));
    navigation.resize(390, 700);
    navigation.show();

    if (parser.isSet(screenshot)) {
        const QString path = parser.value(screenshot);
        // Press start as a user would, then give the tester time to set up
        // and deliver a few results.
        QTimer::singleShot(300, scan, [scan] { scan->actStartStop(); });
        QTimer::singleShot(4000, &navigation, [&navigation, path] {
            const bool saved = navigation.grab().save(path);
            QTextStream(stdout) << (saved ? "Saved the demo window to " : "Could not save ") << path << '\n';
            QApplication::exit(saved ? 0 : 1);
        });
    }
    return app.exec();
}
