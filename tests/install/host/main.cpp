// A host application as a customer writes one, as doc/embedding-guide.md
// says: it links the installed kit, shows the test screen in a navigation
// stack on the simulated backend, runs a test, records a spot, saves the run
// as a spots set and reads it back from the store.
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/foundation/UserDefaults.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/resources/FrameworkBundle.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/session/BMWifiTestSession.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QTextStream>

// Lets the screen work until the condition holds; false after ten seconds.
template<typename Condition>
static bool waitFor(Condition condition)
{
    for (QDeadlineTimer bound(10000); !condition(); QCoreApplication::processEvents(QEventLoop::AllEvents, 20))
        if (bound.hasExpired())
            return false;
    return true;
}

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir home;
    Brightmere::UserDefaults::setStandardFilePath(home.filePath(QStringLiteral("host.ini")));
    BMSDKBackend::setSampleInterval(0.05); // a quick walk

    BMSDKUIStoryboard::registerSegues();
    auto *scan = new BMWifiScanVC;
    scan->setSdkCustomer(QStringLiteral("acme"));
    scan->setSdkPassword(qEnvironmentVariable("BRIGHTMERE_PASSWORD"));
    Brightmere::NavigationController navigation(scan);
    navigation.resize(375, 667);
    navigation.show();
    Brightmere::KeyWindow::makeKeyWindow(&navigation);

    scan->actStartStop();
    BMWifiTestSession *session = scan->session();
    if (!waitFor([session] { return session->isScanning() && !session->testedSpeeds().isEmpty(); }))
        return 1;
    scan->actRecordResetTouchDown();
    if (!waitFor([session, before = session->testedSpeeds().size()] { return session->testedSpeeds().size() > before; }))
        return 1;
    scan->actRecordResetTouchUpInside();
    scan->actStartStop();
    scan->saveCurrentSpotSetWithName(QStringLiteral("Ground floor"));
    const FZHistoricalResultSpotsSet::Ptr saved = FZHistoricalResultSpotsSet::spotsSetWithName(QStringLiteral("Ground floor"));
    if (!saved)
        return 1;
    QTextStream(stdout) << "BrightmereMobileSDKUI " << Brightmere::FrameworkBundle::shortVersion() << ": saved '"
                        << saved->name() << "' with " << saved->spots().size() << " spot\n";
    return 0;
}
