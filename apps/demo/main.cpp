// The demo host: how a newcomer runs the kit. It embeds the kit the way a
// customer's application does (see DemoWindow) and measures the simulated
// home network unless --tester names an address to measure for real.
//
//   brightmere_demo                      interactive, in a phone-sized window
//   brightmere_demo --walkthrough DIR    headless tour, pictures into DIR
//   brightmere_demo --screenshot FILE    one picture of a running test
//   brightmere_demo --tester URL         measure real downloads (on Wi-Fi)
//   brightmere_demo --high-contrast      as on a system that asks for high contrast
//   brightmere_demo --text-scale 1.5     everything above with text 1.5 times larger
//
// The customer's name and password come from --customer/--password or
// BRIGHTMERE_CUSTOMER/BRIGHTMERE_PASSWORD; the password goes to the screen
// and nowhere else. --i18n-service (or BRIGHTMERE_I18N_URL, or the core
// library's BRIGHTMERE_SERVER_URL) names a localisation service whose texts
// are fetched at start.
#include "DemoOptions.h"
#include "DemoWalkthrough.h"
#include "DemoWindow.h"
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/core/BMSDKRestServiceManager.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>

#include <QApplication>
#include <QFontDatabase>
#include <QTextStream>
#include <QTimer>

#include <memory>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("BrightmereDemo"));
    QApplication::setOrganizationName(QStringLiteral("Brightmere"));
    QTextStream out(stdout);

    const DemoOptions options = DemoOptions::parse(QApplication::arguments(), QProcessEnvironment::systemEnvironment());
    if (options.helpShown) {
        out << DemoOptions::helpText();
        return 0;
    }
    if (!options.isValid()) {
        QTextStream err(stderr);
        for (const QString &error : options.errors)
            err << "brightmere_demo: " << error << '\n';
        err << DemoOptions::helpText();
        return 2;
    }

    // Before any screen is made: the kit sizes its text when a screen is built.
    if (options.textScale != 1.0) {
        QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
        if (font.pointSizeF() > 0)
            font.setPointSizeF(font.pointSizeF() * options.textScale);
        else
            font.setPixelSize(qRound(font.pixelSize() * options.textScale));
        QApplication::setFont(font);
    }

    // The tour sets up its own world before anything of the kit reads settings.
    std::unique_ptr<DemoWalkthrough> walkthrough;
    if (!options.walkthroughDir.isEmpty()) {
        walkthrough = std::make_unique<DemoWalkthrough>(options.walkthroughDir, out);
        if (!walkthrough->isReady())
            return 1;
    } else if (!options.testerUrl.isEmpty()) {
        // --any-link: the real download over whatever link there is, the simulated Wi-Fi around it.
        if (options.anyLink)
            BMSDKBackend::setTesterKind(BMSDKBackend::Kind::System);
        else
            BMSDKBackend::setKind(BMSDKBackend::Kind::System);
        BMSDKBackend::setSystemDownloadUrl(options.testerUrl);
    }

    BMSDKUISettings::sharedInstance().setHighContrast(options.highContrast);
    if (!options.i18nServiceUrl.isEmpty())
        BMSDKRestServiceManager::setBrightmereServerURL(options.i18nServiceUrl.toString());
    // Once, before any screen: the saved-results and settings screens are reached by segue.
    BMSDKUIStoryboard::registerSegues();

    DemoWindow window(options);
    out << "Demo host: customer " << options.customer << ", "
        << (options.password.isEmpty() ? "no password" : "password given") << ", "
        << (options.testerUrl.isEmpty() || walkthrough ? QStringLiteral("simulated network")
                                                       : QStringLiteral("tester ")
                                                             + BMSDKGeneralUtilities::displayAddress(options.testerUrl))
        << ", texts "
        << (options.i18nServiceUrl.isEmpty() ? QStringLiteral("built in")
                                             : BMSDKGeneralUtilities::displayAddress(options.i18nServiceUrl))
        << Qt::endl;

    if (walkthrough) {
        const bool ok = walkthrough->run(&window, options);
        out << walkthrough->summary() << Qt::flush;
        return ok ? 0 : 1;
    }

    if (!options.i18nServiceUrl.isEmpty() || !qEnvironmentVariable("BRIGHTMERE_SERVER_URL").isEmpty())
        BMI18NManager::sharedInstance()->updateBundleTexts();
    window.show();

    if (!options.screenshotPath.isEmpty()) {
        const QString path = options.screenshotPath;
        BMWifiScanVC *scan = window.scan();
        // Press start as a user would, then give the tester time to set up
        // and deliver a few results.
        QTimer::singleShot(300, scan, [scan] { scan->actStartStop(); });
        QTimer::singleShot(4000, &window, [&window, &out, path] {
            const bool saved = window.grab().save(path);
            out << (saved ? "Saved the demo window to " : "Could not save ") << path << Qt::endl;
            QApplication::exit(saved ? 0 : 1);
        });
    }
    return app.exec();
}
