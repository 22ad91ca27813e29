#include "LogCapture.h"
#include "TestEnvironment.h"
#include "platform/views/MailComposer.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Brightmere;

class tst_MailComposer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_path = qgetenv("PATH");
    }
    void cleanup()
    {
        MailComposer::setOpener({});
        qputenv("PATH", m_path);
        m_env.reset();
    }
    void mailtoEncoding_data();
    void mailtoEncoding();
    void presentHandsTheUrlToTheOpener();
    void canSendMailAsksTheDesktop_data();
    void canSendMailAsksTheDesktop();

private:
    std::unique_ptr<TestEnvironment> m_env;
    QByteArray m_path;
};

void tst_MailComposer::mailtoEncoding_data()
{
    QTest::addColumn<QStringList>("to");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("body only, as the spot names are shared")
        << QStringList{} << QString() << "Kitchen" << QByteArray("mailto:?body=Kitchen");
    QTest::newRow("spaces are %20, never +")
        << QStringList{} << "Spot names" << "Living Room" << QByteArray("mailto:?subject=Spot%20names&body=Living%20Room");
    QTest::newRow("line breaks travel as CRLF")
        << QStringList{} << QString() << "Kitchen\nHall\r\nAttic\rCellar"
        << QByteArray("mailto:?body=Kitchen%0D%0AHall%0D%0AAttic%0D%0ACellar");
    QTest::newRow("ampersand, equals, question and hash stay inside the body")
        << QStringList{} << "A&B" << "x=1&y=2?#3" << QByteArray("mailto:?subject=A%26B&body=x%3D1%26y%3D2%3F%233");
    QTest::newRow("plus and percent are escaped")
        << QStringList{} << QString() << "5+5 = 100%" << QByteArray("mailto:?body=5%2B5%20%3D%20100%25");
    QTest::newRow("non-ASCII is UTF-8")
        << QStringList{} << "Küche" << "客厅 Ñ" << QByteArray("mailto:?subject=K%C3%BCche&body=%E5%AE%A2%E5%8E%85%20%C3%91");
    QTest::newRow("recipients joined by commas, blanks dropped")
        << QStringList{"a@example.com", " ", " b+c@example.org "} << QString() << QString()
        << QByteArray("mailto:a@example.com,b%2Bc@example.org");
    QTest::newRow("a subject keeps to one line")
        << QStringList{"a@example.com"} << "first\nsecond" << "x"
        << QByteArray("mailto:a@example.com?subject=first%20second&body=x");
}

void tst_MailComposer::mailtoEncoding()
{
    QFETCH(QStringList, to);
    QFETCH(QString, subject);
    QFETCH(QString, body);
    QFETCH(QByteArray, expected);
    MailComposer composer;
    composer.setToRecipients(to);
    composer.setSubject(subject);
    composer.setMessageBody(body);
    QVERIFY(composer.mailtoUrl().isValid());
    QCOMPARE(composer.mailtoUrl().toEncoded(), expected);
}

void tst_MailComposer::presentHandsTheUrlToTheOpener()
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
    QVERIFY(log.contains("no mail program took the mail"));
    QVERIFY(!log.text().contains("Kitchen")); // the user's text stays out of the log
}

void tst_MailComposer::canSendMailAsksTheDesktop_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("canSend");
    QTest::newRow("a handler is set") << "echo mailer.desktop" << true;
    QTest::newRow("no handler: empty answer") << "echo" << false;
    QTest::newRow("no xdg-mime on this system") << QString() << false;
}

void tst_MailComposer::canSendMailAsksTheDesktop()
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

QTEST_MAIN(tst_MailComposer)
#include "tst_MailComposer.moc"
