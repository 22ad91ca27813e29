#include "LogCapture.h"
#include "TestEnvironment.h"
#include "platform/views/SystemSound.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QTest>
#include <QThread>

using namespace Brightmere;

class tst_SystemSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        SystemSound::reset();
    }
    void cleanup()
    {
        SystemSound::reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }
    void everyPlayIsCounted_data();
    void everyPlayIsCounted();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_SystemSound::everyPlayIsCounted_data()
{
    QTest::addColumn<QList<quint32>>("ids");
    QTest::addColumn<bool>("fromAnotherThread");
    QTest::newRow("sound 0, as the test screen plays it") << QList<quint32>{0} << false;
    QTest::newRow("any id is the click") << QList<quint32>{1104, 0, 4095, 0xffffffffu} << false;
    QTest::newRow("a second of clicks at 100 Mbps") << QList<quint32>(100, 0) << false;
    QTest::newRow("from a worker thread") << QList<quint32>(50, 0) << true;
}

void tst_SystemSound::everyPlayIsCounted()
{
    QFETCH(QList<quint32>, ids);
    QFETCH(bool, fromAnotherThread);
    LogCapture log;
    const auto playAll = [ids] {
        for (quint32 id : ids)
            SystemSound::play(id);
    };
    if (fromAnotherThread) {
        std::unique_ptr<QThread> worker(QThread::create(playAll));
        worker->start();
        QVERIFY(worker->wait(5000));
    } else {
        playAll();
    }
    QCOMPARE(SystemSound::playCount(), int(ids.size()));
    QCoreApplication::processEvents(); // plays queued from the worker reach the effect

    // Without an audio device: said once, however often it plays.
    int notices = 0;
    for (const LogCapture::Line &line : log.lines())
        notices += line.module == QLatin1String("SystemSound") ? 1 : 0;
    QCOMPARE(notices, QMediaDevices::audioOutputs().isEmpty() ? 1 : 0);
    SystemSound::reset();
    QCOMPARE(SystemSound::playCount(), 0);
}

QTEST_MAIN(tst_SystemSound)
#include "tst_SystemSound.moc"
