#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"
#include "core/BMTesterFactory.h"
#include "platform/foundation/ManualClock.h"
#include "platform/foundation/UserDefaults.h"

#include "LogCapture.h"
#include "TestEnvironment.h"
#include "WiFiTesterRecorder.h"

#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <memory>

Q_DECLARE_METATYPE(BMSDKBackend::Kind)

class tst_BMTesterFactory : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup() { m_env.reset(); }

    void backendFollowsTheSetting_data()
    {
        QTest::addColumn<BMSDKBackend::Kind>("kind");
        QTest::addColumn<bool>("production");
        QTest::addColumn<QString>("className");
        QTest::newRow("simulated, production server") << BMSDKBackend::Kind::Simulated << true << "BMSimulatedWiFiTester";
        QTest::newRow("system, test server") << BMSDKBackend::Kind::System << false << "BMHttpWiFiTester";
    }
    void backendFollowsTheSetting()
    {
        QFETCH(BMSDKBackend::Kind, kind);
        QFETCH(bool, production);
        QFETCH(QString, className);
        BMSDKBackend::setKind(kind);
        auto tester = BMTesterFactory::createWiFiTesterWithSDKCustomer("acme", "pw", production);
        QCOMPARE(QString::fromLatin1(tester->metaObject()->className()), className);
        QCOMPARE(tester->sdkCustomer(), QStringLiteral("acme"));
        QVERIFY(tester->hasSdkPassword());
        QCOMPARE(tester->usesProductionServer(), production);
        QVERIFY(!tester->isRunning());
    }

    void passwordIsNeverWritten_data()
    {
        QTest::addColumn<BMSDKBackend::Kind>("kind");
        QTest::newRow("simulated tester, results and a lost network") << BMSDKBackend::Kind::Simulated;
        QTest::newRow("system tester, failing download") << BMSDKBackend::Kind::System;
    }
    void passwordIsNeverWritten()
    {
        QFETCH(BMSDKBackend::Kind, kind);
        const QString password = QStringLiteral("Pw-7f3Qz!unique-9021");
        const QString customer = QStringLiteral("Acme Homes Ltd");
        Brightmere::ManualClock clock(1000.0);
        BMSDKBackend::setClock(&clock);
        BMSDKBackend::setKind(kind);
        BMSDKBackend::setSystemDownloadUrl(QUrl("http://127.0.0.1:1/blob")); // nothing listens: errors are logged
        LogCapture log;
        {
            WiFiTesterRecorder recorder;
            auto tester = BMTesterFactory::createWiFiTesterWithSDKCustomer(customer, password, true);
            tester->initializeWithAppId("com.example.host", std::nullopt, "token", {"a"});
            tester->setResultDelegate(&recorder);
            tester->setSoundEnabled(true);
            tester->start();
            clock.advance(5.0);
            if (kind == BMSDKBackend::Kind::Simulated) {
                QVERIFY(recorder.results.size() > 3);
                BMSimulatedNetwork::shared().setReachabilityStatus(BMSimulatedNetwork::kNotReachable);
                clock.advance(1.0);
            }
            QTRY_VERIFY_WITH_TIMEOUT(recorder.events.contains("finish"), 10000);
        }
        auto &defaults = Brightmere::UserDefaults::standard();
        defaults.setObject(QStringLiteral("written by the password check"), QStringLiteral("kProbeKey"));
        QVERIFY(defaults.synchronize());

        // The customer may be logged; that is how we know the lines were seen.
        QVERIFY(log.contains(customer));
        QVERIFY(!log.text().contains(password));
        QStringList files;
        for (QDirIterator it(m_env->path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();)
            files << it.next();
        QVERIFY(files.contains(m_env->defaultsFilePath()));
        for (const QString &name : std::as_const(files)) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(!file.readAll().contains(password.toUtf8()), qPrintable(name));
        }
    }
};

QTEST_GUILESS_MAIN(tst_BMTesterFactory)
#include "tst_BMTesterFactory.moc"
