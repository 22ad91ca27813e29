#include "../session/WifiScanHarness.h"
#include "LayoutChecks.h"
#include "PopupInput.h"

#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/views/BarButtonItem.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/platform/views/PageControl.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/screens/results/FZSavedSpotsViewController.h>
#include <Brightmere/screens/results/FZSpotsSetsHeaderCollectionViewCell.h>
#include <Brightmere/screens/settings/FZMiscellaneousSettingsViewController.h>
#include <Brightmere/screens/settings/FZSpotNamesSettingsViewController.h>

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

// What a screen reader and a user of larger text find on every screen state
// a person reaches: every control one can act on has a name that says what
// it does, the role it acts as and a place in the Tab order, and a change of
// its state (a switch flipped, a set picked, a column sorted, a hold
// recording, a tutorial page, the speed) changes what it reports. At 1.5
// and 2 times the text, in the phone-sized window, no text is cut and none
// lies over another. One row per state and size.
class tst_Accessibility : public QObject
{
    Q_OBJECT

    int m_named = 0, m_reachable = 0, m_controls = 0;

    // What the interface tells a reader about a widget.
    static QString report(QAccessibleInterface *face)
    {
        const QAccessible::State s = face->state();
        return QStringLiteral("%1|%2|%3%4%5").arg(face->text(QAccessible::Name), face->text(QAccessible::Value))
            .arg(s.checked).arg(s.selected).arg(s.pressed);
    }
    static bool actionable(QAccessibleInterface *face)
    {
        static const QList<QAccessible::Role> roles{QAccessible::Button, QAccessible::CheckBox, QAccessible::ListItem,
                                                    QAccessible::Row, QAccessible::Slider, QAccessible::EditableText};
        QStringList actions = face->actionInterface() ? face->actionInterface()->actionNames() : QStringList();
        actions.removeAll(QAccessibleActionInterface::setFocusAction());
        return !actions.isEmpty() || roles.contains(face->role());
    }
    static QAccessible::Role expectedRole(QWidget *w)
    {
        if (qobject_cast<Brightmere::Switch *>(w))
            return QAccessible::CheckBox;
        if (qobject_cast<Brightmere::TableViewCell *>(w))
            return QAccessible::ListItem;
        if (qobject_cast<Brightmere::PageControl *>(w))
            return QAccessible::Slider;
        if (qobject_cast<QLineEdit *>(w) || w->inherits("QPlainTextEdit"))
            return QAccessible::EditableText;
        return QAccessible::Button;
    }
    static QList<QWidget *> controls(QWidget *root)
    {
        QList<QWidget *> found;
        for (QWidget *w : root->findChildren<QWidget *>()) {
            QAccessibleInterface *face = QAccessible::queryAccessibleInterface(w);
            if (w->isVisible() && face && !face->state().invisible && actionable(face))
                found << w;
        }
        return found;
    }
    // Reports of the shown widgets of one class, in order.
    static QStringList reports(QWidget *root, const QString &className)
    {
        QStringList out;
        for (QWidget *w : root->findChildren<QWidget *>())
            if (w->isVisible() && w->inherits(qPrintable(className)))
                out << report(QAccessible::queryAccessibleInterface(w));
        return out;
    }

    static QToolButton *barButton(WifiScanHarness &h, Brightmere::BarButtonItem *item)
    {
        QCoreApplication::processEvents();
        Brightmere::NavigationItem *top = h.nav->topViewController()->navigationItem();
        Brightmere::NavigationBar *bar = h.nav->navigationBar();
        return item == top->leftBarButtonItem() ? bar->leftButton()
                                                : bar->rightButtons().value(top->rightBarButtonItems().indexOf(item));
    }
    static FZSavedSpotsViewController *list(WifiScanHarness &h)
    {
        QCoreApplication::processEvents();
        return qobject_cast<FZSavedSpotsViewController *>(h.nav->topViewController());
    }
    static QWidget *row(WifiScanHarness &h, int index)
    {
        return list(h)->tableView()->cellForRowAtIndexPath(Brightmere::IndexPath(index, 0));
    }

    // The harness's steps, and: history, choose:N (an option of the popup
    // shown), swipe:N and delete:N (a spot row), hold:N (its speed area,
    // released two results later), open:N and pick:N (a saved set), compare
    // (options, the list's options popup, then compare), forward, sort:N (a heading), page
    // (a tap right of the tutorial's dots), rename:N (a spot's name, typed
    // into), return (the key, on the focused widget), push:misc and push:names.
    static void act(WifiScanHarness &h, const QString &steps)
    {
        for (const QString &step : steps.split(',', Qt::SkipEmptyParts)) {
            const QString verb = step.section(':', 0, 0);
            const int n = step.section(':', 1).toInt();
            if (verb == "history")
                QTest::mouseClick(barButton(h, h.screen->historyButton()), Qt::LeftButton);
            else if (verb == "choose")
                QVERIFY(PopupInput::choose(PopupInput::shown(h.nav.get()), n));
            else if (verb == "swipe" || verb == "delete") {
                const QPoint from = h.rowSpeedArea(n);
                PointerInput::drag(PointerInput::Kind::Mouse, h.screen->tblRecords()->viewport(), from,
                                   from - QPoint(80, 0));
                if (verb == "delete")
                    QTest::mouseClick(h.row(n)->deleteStrip(), Qt::LeftButton);
            } else if (verb == "hold") {
                h.holdRow(n);
                h.clock.advance(2 * WifiScanHarness::kInterval);
                h.releaseRow(n);
            } else if (verb == "open" || verb == "pick")
                QTest::mouseClick(row(h, n), Qt::LeftButton);
            else if (verb == "options" || verb == "compare") {
                QTest::mouseClick(barButton(h, list(h)->optionsButton()), Qt::LeftButton);
                if (verb == "compare")
                    QVERIFY(PopupInput::choose(PopupInput::shown(h.nav.get()), 1));
            } else if (verb == "forward")
                QTest::mouseClick(barButton(h, list(h)->forwardButton()), Qt::LeftButton);
            else if (verb == "sort") {
                QList<FZSpotsSetsHeaderCollectionViewCell *> headings;
                for (auto *cell : h.nav->findChildren<FZSpotsSetsHeaderCollectionViewCell *>())
                    if (cell->isVisible())
                        headings << cell;
                QTest::mouseClick(headings.value(n)->findChild<QPushButton *>(), Qt::LeftButton);
            }
            else if (verb == "rename") {
                QTest::mouseClick(h.row(n)->lblArea(), Qt::LeftButton);
                QTest::keyClicks(h.row(n)->lblArea(), "Kitchen");
            } else if (verb == "return")
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            else if (verb == "page") {
                Brightmere::PageControl *dots = h.screen->pageResults();
                QTest::mouseClick(dots, Qt::LeftButton, {}, QPoint(dots->width() - 2, dots->height() / 2));
            } else if (verb == "push")
                h.nav->pushViewController(step.endsWith("misc") ? static_cast<Brightmere::ViewController *>(
                                                      new FZMiscellaneousSettingsViewController)
                                                                         : new FZSpotNamesSettingsViewController,
                                                  false);
            else
                h.run(step);
            QCoreApplication::processEvents();
        }
    }

private Q_SLOTS:
    void cleanupTestCase()
    {
        qInfo("overall: named %d, reachable by Tab %d, of %d", m_named, m_reachable, m_controls);
    }
    void cleanup()
    {
        Brightmere::View::setTextScaleFactor(1.0);
        BMI18NManager::sharedInstance()->setCurrentLanguage("en");
    }

    void everyControlNamed_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("flip");    // steps that change a state the reader must hear
        QTest::addColumn<QString>("flipped"); // the class whose report that changes
        QTest::addColumn<double>("scale");     // of the text
        const QString run = "start,results:1,press,results:2,release,results:1,record"; // an average, a sample
        const QString saved = "saved,history";
        const auto row = [](const char *state, const QString &steps, const char *flip = "", const char *flipped = "") {
            // Spanish has the longest words of the built-in languages.
            for (const auto &[scale, language] : {std::pair(1.5, ""), std::pair(2.0, ", es")})
                QTest::addRow("%s %gx%s", state, scale, language) << steps << flip << flipped << scale;
        };
        row("tutorial", "", "page", "Brightmere::PageControl");
        row("run", "start,results:3", "results:3", "QLabel");
        row("recording", run + ",press,results:2", "results:4", "BMImageButton");
        row("renaming", run + ",rename:1");
        row("swiped row", run + ",startStop,swipe:1");
        row("delete popup", run + ",startStop,delete:1");
        row("replace popup", run + ",hold:0");
        row("history popup", run + ",history");
        row("save prompt", run + ",history,choose:1");
        row("no title alert", run + ",history,choose:1,return");
        row("no Wi-Fi alert", "wifiOff,start");
        row("saved sets", saved);
        row("saved sets options", saved + ",options");
        row("picking two", saved + ",compare,pick:0", "pick:1", "Brightmere::TableViewCell");
        row("spots set", saved + ",open:0", "sort:0", "QPushButton");
        row("compare", saved + ",compare,pick:0,pick:1,forward", "sort:0", "QPushButton");
        row("confirmation settings", "push:misc");
        row("spot name settings", "push:names");
    }

    void everyControlNamed()
    {
        QFETCH(QString, steps);
        QFETCH(QString, flip);
        QFETCH(QString, flipped);
        QFETCH(double, scale);
        Brightmere::View::setTextScaleFactor(scale);
        if (QByteArray(QTest::currentDataTag()).endsWith(", es"))
            BMI18NManager::sharedInstance()->setCurrentLanguage("es");
        WifiScanHarness h({8.0, 12.0, 30.0, 45.0});
        h.useStoryboard();
        if (steps.startsWith("saved")) {
            for (const char *name : {"Ground floor", "Attic"})
                QVERIFY(FZHistoricalResultSpotsSet::saveSetWithName(
                    name, "HomeNet", QDateTime(QDate(2026, 5, 4), QTime(10, 0), Qt::UTC),
                    {WifiTestResult::create(12.0), WifiTestResult::create(30.0)}));
            steps = steps.mid(6);
        }
        act(h, steps);
        if (QTest::currentTestFailed())
            return;

        const QList<QWidget *> found = controls(h.nav.get());
        QStringList faults;
        int named = 0, reachable = 0;
        for (QWidget *w : found) {
            QAccessibleInterface *face = QAccessible::queryAccessibleInterface(w);
            const QString name = face->text(QAccessible::Name).trimmed();
            const QString what = QStringLiteral("%1 '%2'").arg(w->metaObject()->className(), name);
            if (name.isEmpty() || name == w->metaObject()->className() || name == w->objectName())
                faults << what + " has no name";
            else
                ++named;
            if (face->role() != expectedRole(w) && !(w == h.screen->btnSound() && face->state().checkable))
                faults << what + QStringLiteral(" acts as role %1").arg(face->role());
            // A row takes the focus in its parts (its name, its speed area).
            const QList<QWidget *> parts = QList<QWidget *>{w} + w->findChildren<QWidget *>();
            if (std::any_of(parts.begin(), parts.end(), [](QWidget *p) { return p->focusPolicy() & Qt::TabFocus; }))
                ++reachable;
            else if (w->isEnabled())
                faults << what + " is out of Tab's reach";
            // A check box or toggle flipped by a click reports and announces it
            // (not while the pointer holds Record down).
            if (face->state().checkable && w->isEnabled() && !steps.contains("press")) {
                const QString before = report(face);
                QTest::mouseClick(w, Qt::LeftButton);
                if (report(face) == before)
                    faults << what + " does not tell its flip";
                QTest::mouseClick(w, Qt::LeftButton);
            }
        }
        qInfo("%s: named %d, reachable %d, of %lld", QTest::currentDataTag(), named, reachable, qlonglong(found.size()));
        m_named += named;
        m_reachable += reachable;
        m_controls += int(found.size());
        QVERIFY(!found.isEmpty());
        faults << LayoutChecks::faults(h.nav.get(), LayoutChecks::Texts);
        QCOMPARE(faults.join("; "), QString());

        if (!flip.isEmpty()) {
            const QStringList before = reports(h.nav.get(), flipped);
            act(h, flip);
            QVERIFY2(reports(h.nav.get(), flipped) != before, qPrintable(before.join(" / ")));
        }
    }
};

QTEST_MAIN(tst_Accessibility)
#include "tst_Accessibility.moc"
