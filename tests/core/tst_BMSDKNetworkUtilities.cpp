#include "core/BMSDKNetworkUtilities.h"

#include "TestEnvironment.h"
#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"
#include "platform/foundation/ManualClock.h"

#include <QFile>
#include <QTest>

#include <memory>

namespace {

// An absent value shows as "<none>" so rows can name it.
QString shown(const std::optional<QString> &value)
{
    return value ? *value : QStringLiteral("<none>");
}

} // namespace

class tst_BMSDKNetworkUtilities : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_clock = std::make_unique<Brightmere::ManualClock>(1000.0);
        BMSDKBackend::setClock(m_clock.get());
        BMSDKNetworkUtilities::clearCache();
    }
    void cleanup()
    {
        BMSDKNetworkUtilities::setNmcliProgram(QString());
        m_env.reset();
        m_clock.reset();
    }

    void simulated_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("ssid");
        QTest::addColumn<QString>("expectedSSID");
        QTest::addColumn<QString>("expectedBSSID");

        QTest::newRow("on Wi-Fi: the network's names") << 1 << "HomeNet" << "HomeNet" << "a4:2b:b0:5c:17:e2";
        QTest::newRow("not reachable: none") << 0 << "HomeNet" << "<none>" << "<none>";
        QTest::newRow("another medium: none") << 2 << "HomeNet" << "<none>" << "<none>";
        QTest::newRow("on Wi-Fi without a name: BSSID only") << 1 << "" << "<none>" << "a4:2b:b0:5c:17:e2";
    }

    void simulated()
    {
        QFETCH(int, status);
        QFETCH(QString, ssid);
        QFETCH(QString, expectedSSID);
        QFETCH(QString, expectedBSSID);

        BMSimulatedNetwork::shared().setNetwork(ssid, QStringLiteral("a4:2b:b0:5c:17:e2"));
        BMSimulatedNetwork::shared().setReachabilityStatus(status);
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiSSID()), expectedSSID);
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiBSSID()), expectedBSSID);
    }

    void system_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expectedSSID");
        QTest::addColumn<QString>("expectedBSSID");

        const QByteArray bssid = "00\\:11\\:22\\:33\\:44\\:55";
        QTest::newRow("the active access point among others")
            << "no:Neighbour:" + bssid + "\nyes:HomeNet:A4\\:2B\\:B0\\:5C\\:17\\:E2\nno:HomeNet:" + bssid + "\n" << 0
            << "HomeNet" << "a4:2b:b0:5c:17:e2";
        QTest::newRow("escaped colon and backslash in the SSID")
            << "yes:Caf\\:e\\\\s:" + bssid + "\n" << 0 << "Caf:e\\s" << "00:11:22:33:44:55";
        QTest::newRow("UTF-8 SSID and CRLF line ends")
            << "yes:Caf\xc3\xa9:" + bssid + "\r\n" << 0 << QStringLiteral("Café") << "00:11:22:33:44:55";
        QTest::newRow("a hidden network: BSSID only") << "yes::" + bssid + "\n" << 0 << "<none>" << "00:11:22:33:44:55";
        QTest::newRow("nothing active") << "no:HomeNet:" + bssid + "\n" << 0 << "<none>" << "<none>";
        QTest::newRow("nmcli fails") << "yes:HomeNet:" + bssid + "\n" << 8 << "<none>" << "<none>";
        QTest::newRow("nmcli missing") << QByteArray() << -1 << "<none>" << "<none>";
    }

    void system()
    {
        QFETCH(QByteArray, output);
        QFETCH(int, exitCode);
        QFETCH(QString, expectedSSID);
        QFETCH(QString, expectedBSSID);

        useFakeNmcli(output, exitCode);
        if (exitCode < 0)
            BMSDKNetworkUtilities::setNmcliProgram(m_env->filePath(QStringLiteral("no-such-nmcli")));
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiSSID()), expectedSSID);
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiBSSID()), expectedBSSID);
        if (exitCode >= 0)
            QCOMPARE(calls(), QStringList{QStringLiteral("-t -f ACTIVE,SSID,BSSID dev wifi list --rescan no")});
    }

    void systemAnswerIsKeptForAFewSeconds_data()
    {
        QTest::addColumn<double>("secondsLater");
        QTest::addColumn<int>("expectedRuns");

        QTest::newRow("asked again at once") << 0.0 << 1;
        QTest::newRow("asked again just before it expires") << 2.9 << 1;
        QTest::newRow("asked again once it expired") << 3.0 << 2;
        QTest::newRow("the clock went backwards") << -1.0 << 2;
    }

    void systemAnswerIsKeptForAFewSeconds()
    {
        QFETCH(double, secondsLater);
        QFETCH(int, expectedRuns);

        useFakeNmcli("yes:HomeNet:00\\:11\\:22\\:33\\:44\\:55\n", 0);
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiSSID()), QStringLiteral("HomeNet"));
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiBSSID()), QStringLiteral("00:11:22:33:44:55"));
        m_clock->setNow(m_clock->now() + secondsLater);
        QCOMPARE(shown(BMSDKNetworkUtilities::currentWifiSSID()), QStringLiteral("HomeNet"));
        QCOMPARE(calls().size(), expectedRuns);
    }

private:
    // A stand-in for nmcli that records its arguments and prints output.
    void useFakeNmcli(const QByteArray &output, int exitCode)
    {
        QFile data(m_env->filePath(QStringLiteral("nmcli-output")));
        QVERIFY(data.open(QIODevice::WriteOnly));
        data.write(output);
        data.close();

        const QString script = m_env->filePath(QStringLiteral("nmcli"));
        QFile file(script);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral("#!/bin/sh\necho \"$*\" >> '%1'\ncat '%2'\nexit %3\n")
                       .arg(m_env->filePath(QStringLiteral("nmcli-calls")), data.fileName())
                       .arg(exitCode)
                       .toUtf8());
        file.close();
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));

        BMSDKBackend::setKind(BMSDKBackend::Kind::System);
        BMSDKNetworkUtilities::setNmcliProgram(script);
    }

    QStringList calls() const
    {
        QFile file(m_env->filePath(QStringLiteral("nmcli-calls")));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<Brightmere::ManualClock> m_clock;
};

QTEST_GUILESS_MAIN(tst_BMSDKNetworkUtilities)
#include "tst_BMSDKNetworkUtilities.moc"
