#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QUrl>

// What the demo host was asked to do: read from the command line first, then
// from the BRIGHTMERE_* environment variables. The password is held here in
// memory only and handed to the test screen; nothing prints it.
class DemoOptions
{
public:
    QString customer = QStringLiteral("demo");
    QString password;
    // Empty: the simulated home network.
    QUrl testerUrl;
    // With a tester: measure over whatever link this machine has (a wired
    // desktop, loopback) while the network shown stays the simulated Wi-Fi,
    // since the test screen starts only on Wi-Fi.
    bool anyLink = false;
    // Empty: the built-in texts (or BRIGHTMERE_SERVER_URL when set).
    QUrl i18nServiceUrl;
    // The kit's high-contrast setting, as a host binds it to its system's.
    bool highContrast = false;
    // Non-empty: the headless walkthrough writes its pictures here.
    QString walkthroughDir;
    // Non-empty: one picture of a running test, then exit.
    QString screenshotPath;
    // Problems found while reading; the demo shows them and exits 2.
    QStringList errors;
    bool helpShown = false;

    // arguments includes the program name, as QCoreApplication::arguments.
    static DemoOptions parse(const QStringList &arguments, const QProcessEnvironment &environment);
    static QString helpText();

    bool isValid() const { return errors.isEmpty(); }
};
