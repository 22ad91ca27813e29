#include "ViewController.h"

#include "Alert.h"
#include "ApplicationNotifications.h"
#include "KeyboardNotifications.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "Storyboard.h"
#include "StoryboardSegue.h"
#include <Brightmere/core/BMLogger.h>

#include <QEvent>
#include <QShowEvent>

namespace Brightmere {

namespace {
const QString kModule = QStringLiteral("ViewController");
}

ViewController::ViewController(QWidget *parent)
    : QWidget(parent)
    , m_navigationItem(new NavigationItem(this))
{
}

ViewController::~ViewController() = default;

NavigationController *ViewController::navigationController() const
{
    return m_navigationController.data();
}

Alert *ViewController::presentedAlert() const
{
    return m_presentedAlert.data();
}

void ViewController::loadViewIfNeeded()
{
    if (m_viewLoaded)
        return;
    // Set first: a controller that asks for its view from inside viewDidLoad
    // must not load twice.
    m_viewLoaded = true;
    // Screens observe the keyboard and the application's state from their
    // first load on, so the watching starts with the first screen.
    KeyboardNotifications::startWatching();
    ApplicationNotifications::startWatching();
    viewDidLoad();
}

void ViewController::setTitle(const QString &title)
{
    m_title = title;
    m_navigationItem->setTitle(title);
}

Storyboard *ViewController::storyboard() const
{
    return m_storyboard ? m_storyboard.data() : Storyboard::main();
}

void ViewController::setStoryboard(Storyboard *storyboard)
{
    m_storyboard = storyboard;
}

void ViewController::performSegueWithIdentifier(const QString &identifier, QObject *sender)
{
    Storyboard *board = storyboard();
    if (!board->hasSegue(identifier)) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "%@: no segue with identifier '%@'",
                                                 QString::fromUtf8(metaObject()->className()), identifier);
        return;
    }
    if (!navigationController()) {
        BMLogger::sharedInstance().logFromModule(
            kModule, 3, "%@: segue '%@' needs a navigation controller; this screen is in none",
            QString::fromUtf8(metaObject()->className()), identifier);
        return;
    }
    ViewController *destination = board->instantiateDestination(identifier);
    if (!destination)
        return; // the storyboard has logged why
    destination->setStoryboard(board);
    StoryboardSegue segue(identifier, this, destination);
    prepareForSegue(segue, sender);
    segue.perform();
}

void ViewController::presentAlert(Alert *alert, bool animated, std::function<void()> completion)
{
    if (!alert) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "%@: asked to present no alert",
                                                 QString::fromUtf8(metaObject()->className()));
        return;
    }
    if (m_presentedAlert) {
        BMLogger::sharedInstance().logFromModule(
            kModule, 2, "%@: already presents the alert '%@'; the alert '%@' is not shown",
            QString::fromUtf8(metaObject()->className()), m_presentedAlert->title(), alert->title());
        alert->deleteLater();
        return;
    }
    m_presentedAlert = alert;
    connect(alert, &Alert::dismissed, this, [this, alert] {
        if (m_presentedAlert == alert)
            m_presentedAlert.clear();
    });
    alert->showOver(window(), animated);
    if (completion)
        completion();
}

void ViewController::beginAppearanceTransition(bool isAppearing, bool animated)
{
    if (isAppearing) {
        if (m_appearance == Appearance::Appeared || m_appearance == Appearance::Appearing)
            return;
        loadViewIfNeeded();
        m_appearance = Appearance::Appearing;
        m_transitionAnimated = animated;
        viewWillAppear(animated);
    } else {
        if (m_appearance == Appearance::Disappeared || m_appearance == Appearance::Disappearing)
            return;
        m_appearance = Appearance::Disappearing;
        m_transitionAnimated = animated;
        viewWillDisappear(animated);
    }
}

void ViewController::endAppearanceTransition()
{
    if (m_appearance == Appearance::Appearing) {
        m_appearance = Appearance::Appeared;
        takeKeyboardFocus();
        viewDidAppear(m_transitionAnimated);
    } else if (m_appearance == Appearance::Disappearing) {
        m_appearance = Appearance::Disappeared;
        viewDidDisappear(m_transitionAnimated);
    }
}

bool ViewController::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize)
        runLayoutPass();
    return QWidget::event(event);
}

void ViewController::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    loadViewIfNeeded();
    // Inside a navigation controller the stack decides who appears. isNull()
    // rather than the pointer: while the controller is being destroyed (its
    // QWidget part hides the children) it is no NavigationController any
    // more, and the cast to one would be undefined.
    if (m_navigationController.isNull()) {
        beginAppearanceTransition(true, false);
        endAppearanceTransition();
    }
}

void ViewController::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous() || !m_navigationController.isNull())
        return;
    beginAppearanceTransition(false, false);
    endAppearanceTransition();
}

void ViewController::takeKeyboardFocus()
{
    // The screen on show holds the keyboard itself, with no control ringed
    // until Tab moves to one; a control left focused on a screen that went
    // (or none at all) would otherwise take it.
    QWidget *focus = window() ? window()->focusWidget() : nullptr;
    if (!focus || !isAncestorOf(focus))
        setFocus(Qt::OtherFocusReason);
}

void ViewController::setNavigationController(NavigationController *navigationController)
{
    m_navigationController = navigationController;
}

void ViewController::runLayoutPass()
{
    // A pass that resizes or relays out this view must not start another
    // one from inside itself.
    if (!m_viewLoaded || m_inLayoutPass)
        return;
    m_inLayoutPass = true;
    viewWillLayoutSubviews();
    m_inLayoutPass = false;
}

} // namespace Brightmere
