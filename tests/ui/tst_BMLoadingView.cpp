#include "LogCapture.h"
#include "platform/views/KeyWindow.h"
#include "ui/BMLoadingView.h"

#include <QTest>
#include <QThread>

#include <memory>

// The shared overlay: shown over the key window, once, from any thread.
class tst_BMLoadingView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void callsInOrderFromAnyThread_data();
    void callsInOrderFromAnyThread();
    void followsTheWindowAndIsKeptForLaterCalls();
    void showsAgainInTheNextWindow_data();
    void showsAgainInTheNextWindow();
    void noKeyWindowIsLoggedNotShown();

private:
    static void drain() { QCoreApplication::processEvents(); }
    std::unique_ptr<QWidget> m_window;
};

void tst_BMLoadingView::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(375, 667);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    Brightmere::KeyWindow::makeKeyWindow(m_window.get());
}

void tst_BMLoadingView::cleanup()
{
    BMLoadingView::sharedInstance().hide();
    drain();
    m_window.reset();
}

void tst_BMLoadingView::callsInOrderFromAnyThread_data()
{
    QTest::addColumn<QString>("calls"); // p = show, c = showCircle, h = hide
    QTest::addColumn<bool>("fromThread");
    QTest::addColumn<bool>("plain");
    QTest::addColumn<bool>("circle");
    QTest::newRow("show") << "p" << false << true << false;
    QTest::newRow("show twice is one overlay") << "pp" << false << true << false;
    QTest::newRow("both forms at once") << "pc" << false << true << true;
    QTest::newRow("hide takes both down") << "pch" << false << false << false;
    QTest::newRow("show after hide") << "phc" << false << false << true;
    QTest::newRow("from a worker thread") << "pch" << true << false << false;
    QTest::newRow("show from a worker thread") << "c" << true << false << true;
}

void tst_BMLoadingView::callsInOrderFromAnyThread()
{
    QFETCH(QString, calls);
    QFETCH(bool, fromThread);
    QFETCH(bool, plain);
    QFETCH(bool, circle);
    BMLoadingView &view = BMLoadingView::sharedInstance();
    const auto run = [&view, calls] {
        for (QChar call : calls) {
            if (call == 'p')
                view.show();
            else if (call == 'c')
                view.showCircle();
            else
                view.hide();
        }
    };
    if (fromThread) {
        std::unique_ptr<QThread> worker(QThread::create(run));
        worker->start();
        QVERIFY(worker->wait(5000));
    } else {
        run();
        // Queued: nothing shows before the current work ends.
        QVERIFY(!view.isShown() && !view.isCircleShown());
    }
    drain();
    QCOMPARE(view.isShown(), plain);
    QCOMPARE(view.isCircleShown(), circle);
    QCOMPARE(view.overlay() && view.overlay()->isVisible(), plain);
    QCOMPARE(view.circleOverlay() && view.circleOverlay()->isVisible(), circle);
    const QList<QWidget *> children = m_window->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    QCOMPARE(children.size(), int(plain) + int(circle));
}

void tst_BMLoadingView::followsTheWindowAndIsKeptForLaterCalls()
{
    BMLoadingView &view = BMLoadingView::sharedInstance();
    view.show();
    drain();
    QWidget *first = view.overlay();
    QVERIFY(first);
    QCOMPARE(first->geometry(), m_window->rect());
    m_window->resize(320, 480);
    QCOMPARE(first->geometry(), QRect(0, 0, 320, 480));
    view.hide();
    drain();
    QVERIFY(first->parentWidget() != m_window.get());
    view.show();
    drain();
    QCOMPARE(view.overlay(), first);
}

void tst_BMLoadingView::showsAgainInTheNextWindow_data()
{
    QTest::addColumn<bool>("deleteWindow");
    QTest::newRow("its window closed while it was up") << false;
    QTest::newRow("its window deleted while it was up") << true;
}

void tst_BMLoadingView::showsAgainInTheNextWindow()
{
    QFETCH(bool, deleteWindow);
    BMLoadingView &view = BMLoadingView::sharedInstance();
    view.show();
    drain();
    QVERIFY(view.overlay() && view.overlay()->isVisible());
    if (deleteWindow)
        m_window.reset();
    else
        m_window->close();

    QWidget next;
    next.resize(375, 667);
    next.show();
    QVERIFY(QTest::qWaitForWindowExposed(&next));
    Brightmere::KeyWindow::makeKeyWindow(&next);
    view.show();
    drain();
    QVERIFY(view.overlay() && view.overlay()->isVisible());
    QCOMPARE(view.overlay()->window(), &next);
    view.hide();
    drain();
}

void tst_BMLoadingView::noKeyWindowIsLoggedNotShown()
{
    m_window->hide();
    LogCapture log;
    BMLoadingView::sharedInstance().showCircle();
    drain();
    QVERIFY(!BMLoadingView::sharedInstance().isCircleShown());
    QVERIFY(log.contains("no key window"));
}

QTEST_MAIN(tst_BMLoadingView)
#include "tst_BMLoadingView.moc"
