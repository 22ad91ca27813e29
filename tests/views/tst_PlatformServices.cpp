// What the platform tells screens and does for them: keyboard and
// application notifications, the click sound, the mail hand-over.
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/views/ApplicationNotifications.h"
#include "platform/views/KeyboardNotifications.h"
#include "platform/views/MailComposer.h"
#include "platform/views/SystemSound.h"

#include <QFile>
#include <QAudioDevice>
#include <QGuiApplication>
#include <QMediaDevices>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace Brightmere;

class tst_PlatformServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_posted.clear();
        m_frames.clear();
        // Every case starts from a hidden keyboard, before anyone listens.
        QVERIFY(KeyboardNotifications::startWatching());
        KeyboardNotifications::handleInputMethodState(false, QRect());
        const QList<std::pair<QString, QChar>> names{
            {"ApplicationWillResignActiveNotification", 'R'}, {"ApplicationDidEnterBackgroundNotification", 'B'},
            {"ApplicationDidBecomeActiveNotification", 'A'}, {"KeyboardDidShowNotification", 'S'},
            {"KeyboardWillHideNotification", 'H'}};
        for (const auto &[name, letter] : names) {
            NotificationCenter::defaultCenter().addObserver(this, name, [this, letter](const Notification &n) {
                m_posted += letter;
                if (n.name.startsWith("Keyboard")) {
                    // Screens read a QRect under exactly this key.
                    QCOMPARE(n.userInfo.keys(), QStringList{"KeyboardFrameEndUserInfoKey"});
                    QCOMPARE(n.userInfo.value("KeyboardFrameEndUserInfoKey").typeId(), QMetaType::QRect);
                    m_frames.append(n.userInfo.value("KeyboardFrameEndUserInfoKey").toRect());
                }
            });
        }
        SystemSound::reset();
        m_path = qgetenv("PATH");
    }

    void cleanup()
    {
        NotificationCenter::defaultCenter().removeObserver(this);
        SystemSound::reset();
        MailComposer::setOpener({});
        qputenv("PATH", m_path);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_env.reset();
    }

    void inputMethodReports()
    {
        const QRect low(0, 544, 390, 300), high(0, 500, 390, 344);
        // The same report again posts nothing, a new frame while up posts did-show again, down while down nothing.
        for (const auto &[visible, frame] : {std::pair{true, low}, {true, low}, {true, high}, {false, QRect()},
                                             {false, low}, {true, low}})
            KeyboardNotifications::handleInputMethodState(visible, frame);
        QCOMPARE(m_posted, QStringLiteral("SSHS"));
        QCOMPARE(m_frames, (QList<QRect>{low, high, QRect(), low}));
    }

    void applicationStateChanges()
    {
        const auto posted = [this](const QList<Qt::ApplicationState> &states) {
            // The watcher's path: settle on the first state, then follow the rest.
            ApplicationNotifications::handleApplicationStateChanged(states.first());
            m_posted.clear();
            for (Qt::ApplicationState state : states.mid(1))
                ApplicationNotifications::handleApplicationStateChanged(state);
            return m_posted;
        };
        const auto active = Qt::ApplicationActive, inactive = Qt::ApplicationInactive;
        const auto hidden = Qt::ApplicationHidden, suspended = Qt::ApplicationSuspended;
        QCOMPARE(posted({inactive, hidden}), QStringLiteral("B"));
        QCOMPARE(posted({active, suspended}), QStringLiteral("RB")); // straight there: resign, then background
        // Hidden: in front but not active yet, or still in the background.
        QCOMPARE(posted({hidden, inactive}) + posted({hidden, suspended}), QString());
        // To the background and back, a repeat posting once.
        QCOMPARE(posted({active, inactive, inactive, suspended, inactive, active}), QStringLiteral("RBA"));
    }

    void followsTheRealApplicationState()
    {
        QVERIFY(ApplicationNotifications::startWatching());
        QVERIFY(ApplicationNotifications::startWatching());
        // No window has had focus yet in this process.
        QCOMPARE(QGuiApplication::applicationState(), Qt::ApplicationInactive);
        ApplicationNotifications::handleApplicationStateChanged(Qt::ApplicationInactive);
        m_posted.clear();
        // Where the platform has no state of its own, Qt derives it from the
        // focused window: activating one makes the application active, and
        // the watcher (connected once, despite two starts) says so once.
        QWidget window;
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationActive);
        QCOMPARE(m_posted, QStringLiteral("A"));
    }

    void everySoundPlayIsCounted()
    {
        LogCapture log;
        // Any id is the click; a second of clicks at 100 Mbps, half of them from a worker.
        const auto play = [] {
            for (quint32 id : {0u, 1104u, 0xffffffffu})
                SystemSound::play(id);
            for (int i = 0; i < 50; ++i)
                SystemSound::play(0);
        };
        play();
        std::unique_ptr<QThread> worker(QThread::create(play));
        worker->start();
        QVERIFY(worker->wait(5000));
        QCOMPARE(SystemSound::playCount(), 106);
        QCoreApplication::processEvents(); // plays queued from the worker reach the effect
        // Without an audio device: said once, however often it plays.
        int notices = 0;
        for (const LogCapture::Line &line : log.lines())
            notices += line.module == QLatin1String("SystemSound") ? 1 : 0;
        QCOMPARE(notices, QMediaDevices::audioOutputs().isEmpty() ? 1 : 0);
    }

    void mailtoEncoding()
    {
        const auto url = [](const QStringList &to, const QString &subject, const QString &body) {
            MailComposer composer;
            composer.setToRecipients(to);
            composer.setSubject(subject);
            composer.setMessageBody(body);
            return composer.mailtoUrl().toEncoded();
        };
        // Spaces are %20, never +; line breaks travel as CRLF.
        QCOMPARE(url({}, "Spot names", "Living Room\nHall\r\nAttic\rCellar"),
                 QByteArray("mailto:?subject=Spot%20names&body=Living%20Room%0D%0AHall%0D%0AAttic%0D%0ACellar"));
        // Ampersand, equals, question, hash, plus and percent stay inside; non-ASCII is UTF-8.
        QCOMPARE(url({}, "A&B Küche", "x=1&y=2?#3+100% 客厅"),
                 QByteArray("mailto:?subject=A%26B%20K%C3%BCche&body=x%3D1%26y%3D2%3F%233%2B100%25%20%E5%AE%A2%E5%8E%85"));
        // Recipients joined by commas, blanks dropped; a subject keeps to one line.
        QCOMPARE(url({"a@example.com", " ", " b+c@example.org "}, "first\nsecond", "x"),
                 QByteArray("mailto:a@example.com,b%2Bc@example.org?subject=first%20second&body=x"));
    }

    void presentHandsTheUrlToTheOpener()
    {
        QList<QUrl> opened;
        bool take = true;
        MailComposer::setOpener([&](const QUrl &url) {
            opened.append(url);
            return take;
        });
        MailComposer composer;
        composer.setMessageBody("Kitchen\nHall");
        QSignalSpy finished(&composer, &MailComposer::finished);
        LogCapture log;
        QCOMPARE(composer.present(), MailComposer::Result::Sent);
        take = false;
        QCOMPARE(composer.present(), MailComposer::Result::Failed);
        QCOMPARE(opened, (QList<QUrl>{composer.mailtoUrl(), composer.mailtoUrl()}));
        QCOMPARE(finished.count(), 2);
        QCOMPARE(finished.at(1).at(0).value<MailComposer::Result>(), MailComposer::Result::Failed);
        QVERIFY(!log.text().contains("Kitchen")); // the user's text stays out of the log
    }

    void canSendMailAsksTheDesktop_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("canSend");
        QTest::newRow("a handler is set") << "echo mailer.desktop" << true;
        QTest::newRow("no handler: empty answer") << "echo" << false;
        QTest::newRow("no xdg-mime on this system") << QString() << false;
    }

    void canSendMailAsksTheDesktop()
    {
#if !defined(Q_OS_LINUX) || defined(Q_OS_ANDROID)
        QSKIP("the desktop is asked on Linux only");
#endif
        QFETCH(QString, script);
        QFETCH(bool, canSend);
        QTemporaryDir bin;
        if (!script.isNull()) {
            QFile tool(bin.filePath("xdg-mime"));
            QVERIFY(tool.open(QIODevice::WriteOnly));
            tool.write("#!/bin/sh\n" + script.toUtf8() + "\n");
            tool.close();
            tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        qputenv("PATH", bin.path().toLocal8Bit());
        QCOMPARE(MailComposer::canSendMail(), canSend);
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
    QString m_posted; // R resign, B background, A active; S keyboard did show, H will hide
    QList<QRect> m_frames;
    QByteArray m_path;
};

QTEST_MAIN(tst_PlatformServices)
#include "tst_PlatformServices.moc"
