#include "RecordingViewController.h"
#include "TestEnvironment.h"
#include "platform/views/BarButtonItem.h"
#include "platform/views/NavigationBar.h"
#include "platform/views/NavigationItem.h"

#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QToolButton>

using namespace Brightmere;

class tst_NavigationBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void backButtonVisibility_data();
    void backButtonVisibility();
    void titleFollowsTheTopController();
    void customTitleViewReplacesTheLabel();
    void barButtonsRunTheirActions();
    void rightButtonsStartFromTheRight();
    void drawing_data();
    void drawing();
    void defaultLook();

private:
    std::unique_ptr<TestEnvironment> m_env;
    RecordingViewController::Journal m_journal;
    std::unique_ptr<NavigationController> m_nav;
    RecordingViewController *m_root = nullptr;
};

void tst_NavigationBar::init()
{
    m_env = std::make_unique<TestEnvironment>();
    m_journal = std::make_shared<QStringList>();
    m_root = new RecordingViewController("Root", m_journal);
    m_nav = std::make_unique<NavigationController>(m_root);
    m_nav->resize(390, 300);
    m_nav->show();
}

void tst_NavigationBar::cleanup()
{
    m_nav.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_env.reset();
}

void tst_NavigationBar::backButtonVisibility_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<bool>("leftItem");
    QTest::addColumn<bool>("hidesBack");
    QTest::addColumn<bool>("shown");
    QTest::newRow("root alone: no back") << 1 << false << false << false;
    QTest::newRow("second screen: back") << 2 << false << false << true;
    QTest::newRow("third screen: back") << 3 << false << false << true;
    QTest::newRow("a left button takes its place") << 2 << true << false << false;
    QTest::newRow("the top item hides it") << 2 << false << true << false;
    QTest::newRow("a left button at the root") << 1 << true << false << false;
}

void tst_NavigationBar::backButtonVisibility()
{
    QFETCH(int, depth);
    QFETCH(bool, leftItem);
    QFETCH(bool, hidesBack);
    QFETCH(bool, shown);
    for (int i = 1; i < depth; ++i)
        m_nav->pushViewController(new RecordingViewController(QString::number(i), m_journal), false);
    NavigationItem *item = m_nav->topViewController()->navigationItem();
    if (leftItem)
        item->setLeftBarButtonItem(new BarButtonItem("Edit", BarButtonItem::Style::Plain, {}));
    item->setHidesBackButton(hidesBack);

    NavigationBar *bar = m_nav->navigationBar();
    QCOMPARE(bar->isBackButtonShown(), shown);
    QCOMPARE(bar->leftButton() != nullptr, leftItem);
    if (shown) // the back button names where it goes
        QCOMPARE(bar->backButton()->text(), depth == 2 ? QStringLiteral("Root") : QString::number(depth - 2));
}

void tst_NavigationBar::titleFollowsTheTopController()
{
    NavigationBar *bar = m_nav->navigationBar();
    QCOMPARE(bar->titleLabel()->text(), QStringLiteral("Root"));
    auto *second = new RecordingViewController("Second", m_journal);
    m_nav->pushViewController(second, true);
    QCOMPARE(bar->titleLabel()->text(), QStringLiteral("Second"));
    second->setTitle("Renamed");
    QCOMPARE(bar->titleLabel()->text(), QStringLiteral("Renamed"));
    // A change to a screen no longer on top leaves the bar alone.
    m_nav->popViewControllerAnimated(true);
    second->setTitle("Gone");
    QCOMPARE(bar->titleLabel()->text(), QStringLiteral("Root"));
    // The title is centred on the bar.
    const QRect label = bar->titleLabel()->geometry();
    QVERIFY(qAbs(label.center().x() - bar->width() / 2) <= 1);
}

void tst_NavigationBar::customTitleViewReplacesTheLabel()
{
    NavigationBar *bar = m_nav->navigationBar();
    auto *header = new QWidget;
    header->resize(200, 44);
    m_root->navigationItem()->setTitleView(header);
    QCOMPARE(bar->shownTitleWidget(), header);
    QVERIFY(bar->titleLabel()->isHidden());
    QCOMPARE(header->parentWidget(), bar);
    QCOMPARE(header->geometry(), QRect((390 - 200) / 2, 0, 200, 44));

    // The next screen has a plain title; the header waits with its item.
    m_nav->pushViewController(new RecordingViewController("Next", m_journal), true);
    QCOMPARE(bar->shownTitleWidget(), bar->titleLabel());
    QVERIFY(header->isHidden());
    m_nav->popViewControllerAnimated(true);
    QCOMPARE(bar->shownTitleWidget(), header);

    // Replacing the title view releases the old one.
    QPointer<QWidget> old = header;
    m_root->navigationItem()->setTitleView(new QLabel("New"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!old);
}

void tst_NavigationBar::barButtonsRunTheirActions()
{
    int edits = 0;
    int shares = 0;
    NavigationItem *item = m_root->navigationItem();
    item->setLeftBarButtonItem(new BarButtonItem("Edit", BarButtonItem::Style::Plain, [&] { ++edits; }));
    item->setRightBarButtonItem(new BarButtonItem("Share", BarButtonItem::Style::Done, [&] { ++shares; }));
    NavigationBar *bar = m_nav->navigationBar();
    QTest::mouseClick(bar->leftButton(), Qt::LeftButton);
    QTest::mouseClick(bar->rightButtons().first(), Qt::LeftButton);
    QCOMPARE(edits, 1);
    QCOMPARE(shares, 1);

    // A disabled item does nothing; retitling shows at once.
    item->rightBarButtonItem()->setEnabled(false);
    item->rightBarButtonItem()->setTitle("Send");
    QCOMPARE(bar->rightButtons().first()->text(), QStringLiteral("Send"));
    QTest::mouseClick(bar->rightButtons().first(), Qt::LeftButton);
    item->rightBarButtonItem()->trigger();
    QCOMPARE(shares, 1);
}

void tst_NavigationBar::rightButtonsStartFromTheRight()
{
    NavigationItem *item = m_root->navigationItem();
    item->setRightBarButtonItems({new BarButtonItem("First", BarButtonItem::Style::Plain, {}),
                                  new BarButtonItem("Second", BarButtonItem::Style::Plain, {})});
    const QList<QToolButton *> buttons = m_nav->navigationBar()->rightButtons();
    QCOMPARE(buttons.size(), 2);
    QCOMPARE(buttons.at(0)->text(), QStringLiteral("First"));
    QVERIFY(buttons.at(0)->geometry().left() > buttons.at(1)->geometry().right());
    QVERIFY(buttons.at(0)->geometry().right() <= 390);
}

void tst_NavigationBar::drawing_data()
{
    QTest::addColumn<bool>("transparent");
    QTest::addColumn<bool>("translucent");
    QTest::addColumn<int>("alpha");
    QTest::newRow("opaque bar fills its background") << false << false << 255;
    QTest::newRow("translucent bar lets some through") << false << true << 234;
    QTest::newRow("transparent bar draws nothing") << true << false << 0;
    QTest::newRow("transparent wins over translucent") << true << true << 0;
}

void tst_NavigationBar::drawing()
{
    QFETCH(bool, transparent);
    QFETCH(bool, translucent);
    QFETCH(int, alpha);
    NavigationBar bar;
    bar.resize(200, NavigationBar::kDefaultHeight);
    bar.setBackgroundColor(QColor(10, 20, 30));
    bar.setTransparent(transparent);
    bar.setTranslucent(translucent);
    QImage image(bar.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    bar.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    const QColor corner = image.pixelColor(2, 2);
    QVERIFY2(qAbs(corner.alpha() - alpha) <= 1, qPrintable(QString::number(corner.alpha())));
    if (alpha == 255)
        QCOMPARE(corner, QColor(10, 20, 30));
    // Nothing at all in a transparent bar, not even the hairline.
    if (alpha == 0)
        QCOMPARE(image.pixelColor(100, bar.height() - 1).alpha(), 0);
}

void tst_NavigationBar::defaultLook()
{
    NavigationBar bar;
    QCOMPARE(bar.sizeHint().height(), 44);
    QVERIFY(bar.backgroundColor().lightness() < 60);
    QCOMPARE(bar.titleColor(), QColor(Qt::white));
    QVERIFY(!bar.isTransparent());
    QVERIFY(!bar.isTranslucent());
}

QTEST_MAIN(tst_NavigationBar)
#include "tst_NavigationBar.moc"
