#include "TestEnvironment.h"
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/screens/results/FZSavedSpotsCell.h>
#include <Brightmere/screens/results/FZSpotsSetsHeaderCollectionViewCell.h>
#include <Brightmere/screens/settings/FZSpotNamesSettingsViewController.h>
#include <Brightmere/session/BMSpeedRecordCell.h>
#include <Brightmere/session/BMWifiScanView.h>
#include <Brightmere/ui/BMImageButton.h>
#include <Brightmere/ui/BMMainButton.h>
#include <Brightmere/ui/BrightmereColor.h>

#include <QtWidgets>
#include <QTest>

// Every colour pair a person reads or must tell apart, read from a shown
// window: the kit's own choices reach their ratios; the design's colours stay
// exactly so until high contrast is asked for, and then reach them on the
// widgets already shown, with their hue kept.
class tst_Contrast : public QObject
{
    Q_OBJECT
    TestEnvironment m_env;
    QWidget m_window;

    // A widget's text (a round control's title; a switch's track where the knob
    // is not) and what is drawn at a point of it where no text is.
    std::pair<QColor, QColor> pair(QWidget *widget, QPointF free)
    {
        const auto at = [&](double x, double y) { return m_window.grab().toImage().pixelColor(widget->mapTo(&m_window, QPoint(x * widget->width(), y * widget->height()))); };
        if (qobject_cast<Brightmere::Switch *>(widget))
            return {at(0.8, 0.5), widget->palette().color(QPalette::Window)};
        if (auto *button = qobject_cast<BMImageButton *>(widget)) { // a hold shows the pressed look
            const bool held = QByteArray(QTest::currentDataTag()).endsWith("held");
            if (held)
                QTest::mousePress(button, Qt::LeftButton);
            const std::pair<QColor, QColor> shown{button->titleColor(), at(0.5, 0.8)};
            if (held)
                QTest::mouseRelease(button, Qt::LeftButton);
            return shown;
        }
        if (auto *button = qobject_cast<BMMainButton *>(widget)) { // pressed: its fill, then its title
            QTest::mousePress(button, Qt::LeftButton);
            const std::pair<QColor, QColor> shown{at(0.03, 0.5), button->titleColor()};
            QTest::mouseRelease(button, Qt::LeftButton);
            return shown;
        }
        return {widget->palette().color(qobject_cast<QAbstractButton *>(widget) ? QPalette::ButtonText : QPalette::WindowText), at(free.x(), free.y())};
    }

private slots:
    void pairs_data()
    {
        QTest::addColumn<QWidget *>("widget");
        QTest::addColumn<QPointF>("free");
        auto *column = new QVBoxLayout(&m_window);
        // Each at least a list row high, so a row's parts lie inside it.
        const auto add = [column](auto *widget) { widget->setMinimumHeight(qMax(64, widget->minimumSizeHint().height())); column->addWidget(widget); return widget; };
        BMWifiScanView *view = add(new BMWifiScanView);
        view->showTesting(true);
        view->findChild<QWidget *>("btnRecordReset")->setEnabled(true); // as the screen has it while testing
        BMSpeedRecordCell *row = add(new BMSpeedRecordCell);
        row->setupWithRecord(WifiTestResult::create(12.5), true);
        QTest::newRow("stop") << view->findChild<QWidget *>("btnStartStop") << QPointF();
        QTest::newRow("record") << view->findChild<QWidget *>("btnRecordReset") << QPointF();
        QTest::newRow("record, held") << view->findChild<QWidget *>("btnRecordReset") << QPointF();
        QTest::newRow("Mbps") << view->findChild<QWidget *>("lblUnit") << QPointF(0.25, 0.5);
        QTest::newRow("preparing") << view->findChild<QWidget *>("lblPreparing") << QPointF(0.02, 0.5);
        QTest::newRow("row speed, even row") << static_cast<QWidget *>(row->lblSpeed()) << QPointF(0.02, 0.5);
        QTest::newRow("saved set date") << add(new FZSavedSpotsCell)->findChild<QWidget *>("dateTextView") << QPointF(0.98, 0.5);
        QTest::newRow("heading detail") << static_cast<QWidget *>(add(new FZSpotsSetsHeaderCollectionViewCell)->detailLabel()) << QPointF(0.98, 0.5);
        QTest::newRow("edit and share") << add(new FZSpotNamesSettingsViewController)->findChild<QWidget *>("leftButton") << QPointF(0.01, 0.5);
        QTest::newRow("switch off track") << static_cast<QWidget *>(add(new Brightmere::Switch)) << QPointF();
        QTest::newRow("design: network name") << view->findChild<QWidget *>("lblSSID") << QPointF(0.98, 0.5);
        QTest::newRow("design: main button, pressed") << static_cast<QWidget *>(add(new BMMainButton(QStringLiteral("Save")))) << QPointF();
        m_window.show();
    }

    void pairs()
    {
        QFETCH(QWidget *, widget);
        const double ratio = qobject_cast<Brightmere::Switch *>(widget) ? Brightmere::Color::kLargeContrast : Brightmere::Color::kTextContrast;
        const auto [color, background] = pair(widget, fetched<QPointF>("free"));
        if (QByteArray(QTest::currentDataTag()).startsWith("design"))
            QCOMPARE(color, Brightmere::Color::colorWithHexString(QStringLiteral("3593da")));
        else
            QVERIFY2(Brightmere::Color::contrastRatio(color, background) >= ratio, qPrintable(color.name() + " on " + background.name()));
        BMSDKUISettings::sharedInstance().setHighContrast(true);
        const auto [strong, strongBackground] = pair(widget, fetched<QPointF>("free"));
        BMSDKUISettings::sharedInstance().setHighContrast(false);
        // Readable, and only the lightness moved.
        QVERIFY2(Brightmere::Color::contrastRatio(strong, strongBackground) >= ratio && qAbs(strong.toHsl().hslHue() - color.toHsl().hslHue()) <= 2,
                 qPrintable(strong.name()));
    }
};

QTEST_MAIN(tst_Contrast)
#include "tst_Contrast.moc"
