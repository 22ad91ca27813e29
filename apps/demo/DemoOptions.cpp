#include "DemoOptions.h"

#include <Brightmere/core/BMSDKGeneralUtilities.h>

#include <QCommandLineParser>

namespace {

struct Parser
{
    QCommandLineParser parser;
    QCommandLineOption customer{QStringLiteral("customer"), QStringLiteral("Customer name given to the test screen."),
                                QStringLiteral("name")};
    QCommandLineOption password{QStringLiteral("password"),
                                QStringLiteral("Customer password (kept in memory only; BRIGHTMERE_PASSWORD is safer)."),
                                QStringLiteral("password")};
    QCommandLineOption tester{QStringLiteral("tester"),
                              QStringLiteral("Measure real download throughput from this http(s) address."),
                              QStringLiteral("URL")};
    QCommandLineOption anyLink{QStringLiteral("any-link"),
                               QStringLiteral("With --tester: measure over any link (wired, loopback); the Wi-Fi shown stays the simulated one.")};
    QCommandLineOption i18n{QStringLiteral("i18n-service"), QStringLiteral("Fetch the texts from this localisation service."),
                            QStringLiteral("URL")};
    QCommandLineOption walkthrough{QStringLiteral("walkthrough"),
                                   QStringLiteral("Headless scripted walk through every screen; one PNG per step into DIR."),
                                   QStringLiteral("DIR")};
    QCommandLineOption screenshot{QStringLiteral("screenshot"),
                                  QStringLiteral("Run a test a few seconds, save the window to <file> (PNG) and exit."),
                                  QStringLiteral("file")};
    QCommandLineOption highContrast{QStringLiteral("high-contrast"),
                                    QStringLiteral("Show the kit as a host does whose system asks for high contrast.")};
    QCommandLineOption textScale{QStringLiteral("text-scale"),
                                 QStringLiteral("Application font this many times the system's (0.5 to 4), as a user who asked for larger text has it."),
                                 QStringLiteral("factor")};
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")};

    Parser()
    {
        parser.setApplicationDescription(QStringLiteral("Demo host of the BrightmereMobileSDKUI kit"));
        parser.addOptions({customer, password, tester, anyLink, i18n, walkthrough, screenshot, highContrast, textScale, help});
    }
};

// Only absolute http(s) addresses make sense for either service.
QUrl webUrl(const QString &text, const QString &what, QStringList &errors)
{
    if (text.isEmpty())
        return {};
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() || (url.scheme() != u"http" && url.scheme() != u"https")) {
        errors << QStringLiteral("%1: not an http(s) address: %2").arg(what, BMSDKGeneralUtilities::displayAddress(text));
        return {};
    }
    return url;
}

QString pick(const QCommandLineParser &parser, const QCommandLineOption &option, const QProcessEnvironment &environment,
             const char *variable)
{
    if (parser.isSet(option))
        return parser.value(option);
    return environment.value(QString::fromLatin1(variable));
}

} // namespace

DemoOptions DemoOptions::parse(const QStringList &arguments, const QProcessEnvironment &environment)
{
    DemoOptions options;
    Parser p;
    if (!p.parser.parse(arguments)) {
        options.errors << p.parser.errorText();
        return options;
    }
    if (!p.parser.positionalArguments().isEmpty())
        options.errors << QStringLiteral("unexpected argument: %1").arg(p.parser.positionalArguments().join(u' '));
    options.helpShown = p.parser.isSet(p.help);

    const QString customer = pick(p.parser, p.customer, environment, "BRIGHTMERE_CUSTOMER").trimmed();
    if (!customer.isEmpty())
        options.customer = customer;
    options.password = pick(p.parser, p.password, environment, "BRIGHTMERE_PASSWORD");
    options.testerUrl = webUrl(pick(p.parser, p.tester, environment, "BRIGHTMERE_DOWNLOAD_URL"),
                               QStringLiteral("--tester"), options.errors);
    options.i18nServiceUrl = webUrl(pick(p.parser, p.i18n, environment, "BRIGHTMERE_I18N_URL"),
                                    QStringLiteral("--i18n-service"), options.errors);
    options.anyLink = p.parser.isSet(p.anyLink);
    if (options.anyLink && options.testerUrl.isEmpty() && options.errors.isEmpty())
        options.errors << QStringLiteral("--any-link goes with --tester");
    options.highContrast = p.parser.isSet(p.highContrast);
    if (p.parser.isSet(p.textScale)) {
        bool ok = false;
        options.textScale = p.parser.value(p.textScale).toDouble(&ok);
        if (!ok || !(options.textScale >= 0.5 && options.textScale <= 4.0))
            options.errors << QStringLiteral("--text-scale: not a factor from 0.5 to 4: %1").arg(p.parser.value(p.textScale).left(20));
    }
    options.walkthroughDir = p.parser.value(p.walkthrough);
    options.screenshotPath = p.parser.value(p.screenshot);
    if (!options.walkthroughDir.isEmpty() && !options.screenshotPath.isEmpty())
        options.errors << QStringLiteral("--walkthrough and --screenshot exclude each other");
    // The walk is scripted on the simulated network; a real tester would make it a lottery.
    if (!options.walkthroughDir.isEmpty() && !options.testerUrl.isEmpty())
        options.errors << QStringLiteral("--walkthrough runs on the simulated network only; drop --tester (or BRIGHTMERE_DOWNLOAD_URL)");
    return options;
}

QString DemoOptions::helpText()
{
    return Parser().parser.helpText();
}
