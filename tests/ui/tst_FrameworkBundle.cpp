#include "LogCapture.h"
#include "resources/FrameworkBundle.h"

#include <QTest>

using Brightmere::FrameworkBundle;

class tst_FrameworkBundle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void imagesAreFoundByNameWithOrWithoutAnExtension_data();
    void imagesAreFoundByNameWithOrWithoutAnExtension();
};

void tst_FrameworkBundle::imagesAreFoundByNameWithOrWithoutAnExtension_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("found");
    QTest::addColumn<double>("aspect"); // width / height as drawn
    for (const char *button : {"buttonStart", "buttonStop", "buttonRecord", "buttonReset"}) {
        QTest::newRow(button) << QString::fromLatin1(button) << true << 1.0;
        QTest::newRow(QByteArray(button) + ".png") << QString::fromLatin1(button) + ".png" << true << 1.0;
    }
    for (const char *name : {"wifiCounter", "wifiCounterRecording", "buttonAudioOn", "buttonAudioOff"})
        QTest::newRow(name) << QString::fromLatin1(name) << true << 1.0;
    for (int page = 1; page <= 4; ++page)
        QTest::newRow(QByteArray("tutorial ") + QByteArray::number(page))
            << QStringLiteral("fairzones_scroll_%1").arg(page) << true << 1.6;
    QTest::newRow("unknown") << QStringLiteral("buttonPause.png") << false << 0.0;
    QTest::newRow("empty") << QString() << false << 0.0;
}

void tst_FrameworkBundle::imagesAreFoundByNameWithOrWithoutAnExtension()
{
    QFETCH(QString, name);
    QFETCH(bool, found);
    QFETCH(double, aspect);
    LogCapture log;
    const QIcon icon = FrameworkBundle::imageNamed(name);
    QCOMPARE(icon.isNull(), !found);
    QCOMPARE(log.contains("no image named"), !found && !name.isEmpty());
    if (!found)
        return;
    // Drawn from the vector image at any size: sharp, in proportion, not blank.
    const QImage image = icon.pixmap(QSize(400, 100), 2.0).toImage();
    QCOMPARE(image.height(), 200);
    QCOMPARE(double(image.width()) / image.height(), aspect);
    QVERIFY(qAlpha(image.pixel(image.width() / 2, image.height() / 3)) > 0);
}

QTEST_MAIN(tst_FrameworkBundle)
#include "tst_FrameworkBundle.moc"
