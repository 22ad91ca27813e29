#include "NavigationController.h"

#include "BarButtonItem.h"
#include "NavigationBar.h"
#include "NavigationItem.h"
#include "TableView.h"
#include "ViewController.h"
#include <Brightmere/core/BMLogger.h>

#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QShortcut>
#include <QAbstractButton>
#include <QToolButton>
#include <QPointer>
#include <QShowEvent>
#include <QStackedWidget>

#include <algorithm>

namespace Brightmere {

namespace {
const QString kModule = QStringLiteral("NavigationController");

QString nameOf(const QObject *object)
{
    return object ? QString::fromUtf8(object->metaObject()->className()) : QStringLiteral("(null)");
}
} // namespace

NavigationController::NavigationController(ViewController *rootViewController, QWidget *parent)
    : QWidget(parent)
{
    m_content = new QStackedWidget(this);
    m_bar = new NavigationBar(this);
    connect(m_bar, &NavigationBar::backRequested, this, [this] { popViewControllerAnimated(true); });
    connect(m_bar, &NavigationBar::placementChanged, this, &NavigationController::layoutContent);
    // Alt+Left and the platform's Back key go back even where the focused
    // control takes arrow keys (a switch, a text field): a shortcut comes
    // first. Escape stays a key, so a control or an overlay can take it.
    QList<QKeySequence> backKeys = QKeySequence::keyBindings(QKeySequence::Back);
    backKeys << QKeySequence(Qt::ALT | Qt::Key_Left) << QKeySequence(Qt::Key_Back);
    QList<QKeySequence> unique;
    for (const QKeySequence &keys : std::as_const(backKeys)) {
        if (!unique.contains(keys))
            unique << keys;
    }
    auto *back = new QShortcut(this);
    back->setKeys(unique);
    back->setContext(Qt::WidgetWithChildrenShortcut);
    connect(back, &QShortcut::activated, this, &NavigationController::goBack);

    if (!rootViewController) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "created without a root screen");
    } else if (rootViewController->navigationController()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the root screen %@ is already in a navigation stack",
                                                 nameOf(rootViewController));
    } else {
        adopt(rootViewController);
        m_stack.append(rootViewController);
    }
    showTop();
    layoutContent();
}

NavigationController::~NavigationController()
{
    // The controllers die with the content widget after this object's
    // members are gone; they must not call back into it.
    for (ViewController *viewController : std::as_const(m_stack))
        disconnect(viewController, nullptr, this, nullptr);
    m_stack.clear();
}

void NavigationController::pushViewController(ViewController *viewController, bool animated)
{
    if (!viewController) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "asked to push no screen");
        return;
    }
    QPointer<ViewController> guard(viewController);
    if (deferIfBusy([this, guard, animated] {
            if (guard)
                pushViewController(guard.data(), animated);
        }))
        return;
    if (m_stack.contains(viewController) || viewController->navigationController()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "%@ is already in a navigation stack; not pushed",
                                                 nameOf(viewController));
        return;
    }

    m_inTransition = true;
    ViewController *old = topViewController();
    adopt(viewController);
    m_stack.append(viewController);
    viewController->loadViewIfNeeded();
    if (m_shown) {
        if (old)
            old->beginAppearanceTransition(false, animated);
        viewController->beginAppearanceTransition(true, animated);
        showTop();
        if (old)
            old->endAppearanceTransition();
        if (guard)
            viewController->endAppearanceTransition();
    } else {
        showTop();
    }
    finishTransition();
}

ViewController *NavigationController::popViewControllerAnimated(bool animated)
{
    if (deferIfBusy([this, animated] { popViewControllerAnimated(animated); }))
        return nullptr;
    if (m_stack.size() <= 1) {
        BMLogger::sharedInstance().logFromModule(kModule, 1, "nothing to pop: the root screen stays");
        return nullptr;
    }
    const QList<ViewController *> popped = popTo(int(m_stack.size()) - 2, animated);
    return popped.isEmpty() ? nullptr : popped.last();
}

QList<ViewController *> NavigationController::popToRootViewControllerAnimated(bool animated)
{
    if (deferIfBusy([this, animated] { popToRootViewControllerAnimated(animated); }))
        return {};
    if (m_stack.size() <= 1)
        return {};
    return popTo(0, animated);
}

QList<ViewController *> NavigationController::popToViewController(ViewController *viewController, bool animated)
{
    QPointer<ViewController> guard(viewController);
    if (deferIfBusy([this, guard, animated] {
            if (guard)
                popToViewController(guard.data(), animated);
        }))
        return {};
    const int index = int(m_stack.indexOf(viewController));
    if (index < 0) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "cannot pop to %@: it is not on the stack",
                                                 nameOf(viewController));
        return {};
    }
    if (index == m_stack.size() - 1)
        return {};
    return popTo(index, animated);
}

bool NavigationController::isNavigationBarHidden() const
{
    return m_bar->isHidden();
}

void NavigationController::setNavigationBarHidden(bool hidden, bool animated)
{
    Q_UNUSED(animated)
    m_bar->setHidden(hidden);
}

QSize NavigationController::sizeHint() const
{
    const int barHeight = m_bar->isHidden() ? 0 : m_bar->sizeHint().height();
    // Screens without a layout have no size hint; a phone-sized stack then.
    QSize content = m_content->sizeHint();
    if (!content.isValid())
        content = QSize(390, 800);
    return content.expandedTo(QSize(m_bar->sizeHint().width(), 0)) + QSize(0, barHeight);
}

void NavigationController::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous() || m_shown)
        return;
    m_shown = true;
    if (ViewController *top = topViewController()) {
        top->beginAppearanceTransition(true, false);
        top->endAppearanceTransition();
    }
}

void NavigationController::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous() || !m_shown)
        return;
    m_shown = false;
    if (ViewController *top = topViewController()) {
        top->beginAppearanceTransition(false, false);
        top->endAppearanceTransition();
    }
}

QList<QWidget *> NavigationController::focusOrder() const
{
    const auto reachable = [](QWidget *widget) {
        // A widget that hands its focus to another (a view's viewport) is
        // as reachable as that one.
        if (widget->focusProxy())
            return false;
        return (widget->focusPolicy() & Qt::TabFocus) && widget->isVisible() && widget->isEnabled();
    };
    QList<QWidget *> order;
    QList<QWidget *> barButtons;
    for (QWidget *button : m_bar->findChildren<QWidget *>()) {
        if (reachable(button))
            barButtons.append(button);
    }
    std::stable_sort(barButtons.begin(), barButtons.end(), [](QWidget *a, QWidget *b) { return a->x() < b->x(); });
    order << barButtons;
    ViewController *top = topViewController();
    if (!top)
        return order;
    QList<QWidget *> chain;
    for (QWidget *w = top->nextInFocusChain(); w && w != top; w = w->nextInFocusChain()) {
        if (top->isAncestorOf(w) && reachable(w) && !order.contains(w) && !chain.contains(w))
            chain.append(w);
    }
    // Rows are reused, so a table's widgets sit in the chain in the order
    // they were made: each table's widgets go where its first one is, in
    // row order (the chain's order within a row).
    while (!chain.isEmpty()) {
        QWidget *first = chain.takeFirst();
        TableView *table = TableView::enclosingTableView(first);
        if (!table || table->rowOfWidget(first) < 0) {
            order.append(first);
            continue;
        }
        QList<QWidget *> rows{first};
        for (auto it = chain.begin(); it != chain.end();) {
            if (TableView::enclosingTableView(*it) == table && table->rowOfWidget(*it) >= 0) {
                rows.append(*it);
                it = chain.erase(it);
            } else {
                ++it;
            }
        }
        std::stable_sort(rows.begin(), rows.end(),
                         [table](QWidget *a, QWidget *b) { return table->rowOfWidget(a) < table->rowOfWidget(b); });
        order << rows;
    }
    return order;
}

bool NavigationController::focusNextPrevChild(bool next)
{
    QList<QWidget *> order = focusOrder();
    QWidget *focus = QApplication::focusWidget();
    const auto targetIn = [&](const QList<QWidget *> &widgets) -> qsizetype {
        const qsizetype current = widgets.indexOf(focus);
        return current < 0 ? (next ? 0 : widgets.size() - 1) : current + (next ? 1 : -1);
    };
    const auto inRange = [&](qsizetype index) { return index >= 0 && index < order.size(); };
    qsizetype target = targetIn(order);

    // Only the rows in view have widgets: a step that would leave a table
    // (or land in it past its first or last row) brings the neighbouring row
    // into view first, so every row is reached in turn.
    TableView *from = order.contains(focus) ? TableView::enclosingTableView(focus) : nullptr;
    const int fromRow = from ? from->rowOfWidget(focus) : -1;
    TableView *to = inRange(target) ? TableView::enclosingTableView(order.at(target)) : nullptr;
    const int toRow = to ? to->rowOfWidget(order.at(target)) : -1;
    TableView *reveal = nullptr;
    int revealRow = -1;
    if (from && fromRow >= 0) {
        const int neighbour = fromRow + (next ? 1 : -1);
        if (neighbour >= 0 && neighbour < from->numberOfRowsInSection(0) && !(to == from && toRow >= 0 && (toRow == fromRow || toRow == neighbour))) {
            reveal = from;
            revealRow = neighbour;
        }
    } else if (to && toRow >= 0) {
        const int edge = next ? 0 : to->numberOfRowsInSection(0) - 1;
        if (toRow != edge) {
            reveal = to;
            revealRow = edge;
        }
    }
    if (reveal) {
        reveal->scrollToRowAtIndexPath(IndexPath(revealRow, 0), TableView::ScrollPosition::None, false);
        order = focusOrder();
        target = targetIn(order);
        // Straight to the revealed row's first (or, backwards, last) control.
        for (qsizetype i = 0; i < order.size(); ++i) {
            const qsizetype index = next ? i : order.size() - 1 - i;
            if (TableView::enclosingTableView(order.at(index)) == reveal
                && reveal->rowOfWidget(order.at(index)) == revealRow) {
                target = index;
                break;
            }
        }
    }

    if (order.isEmpty())
        return QWidget::focusNextPrevChild(next);
    if (!inRange(target)) {
        // Past either end: on to the host's widgets, or round again when
        // the controller is the window.
        if (!isWindow())
            return QWidget::focusNextPrevChild(next);
        target = next ? 0 : order.size() - 1;
    }
    QWidget *chosen = order.at(target);
    if (TableView *table = TableView::enclosingTableView(chosen); table && table->rowOfWidget(chosen) >= 0)
        table->scrollToRowAtIndexPath(IndexPath(table->rowOfWidget(chosen), 0), TableView::ScrollPosition::None,
                                      false);
    chosen->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void NavigationController::keyPressEvent(QKeyEvent *event)
{
    // Enter presses the focused button as Space does (a button in a
    // popup or alert is pressed there, and never gets here).
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat()) {
        auto *button = qobject_cast<QAbstractButton *>(QApplication::focusWidget());
        if (button && isAncestorOf(button) && button->isEnabled()) {
            event->accept();
            button->click();
            return;
        }
    }
    if (event->key() != Qt::Key_Escape || event->modifiers() != Qt::NoModifier) {
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    goBack();
}

void NavigationController::goBack()
{
    if (m_stack.size() < 2 || m_inTransition)
        return;
    // Not from inside a popup or an alert over the screen: the keys are
    // theirs while they are up.
    QWidget *focus = QApplication::focusWidget();
    if (focus && !m_bar->isAncestorOf(focus) && !topViewController()->isAncestorOf(focus)
        && focus != topViewController())
        return;
    // A screen that puts its own back control on the left (one that saves
    // or asks first) is left through it, as a tap on it would.
    NavigationItem *item = topViewController()->navigationItem();
    if (BarButtonItem *left = item ? item->leftBarButtonItem() : nullptr) {
        left->trigger();
        return;
    }
    if (m_bar->isBackButtonShown())
        m_bar->backButton()->click();
}

void NavigationController::resizeEvent(QResizeEvent *)
{
    layoutContent();
}

bool NavigationController::deferIfBusy(std::function<void()> operation)
{
    if (!m_inTransition)
        return false;
    BMLogger::sharedInstance().logFromModule(kModule, 1, "a transition is running; the next one waits for it");
    m_pending.push_back(std::move(operation));
    return true;
}

void NavigationController::finishTransition()
{
    m_inTransition = false;
    while (!m_pending.empty() && !m_inTransition) {
        auto operation = std::move(m_pending.front());
        m_pending.pop_front();
        operation();
    }
}

QList<ViewController *> NavigationController::popTo(int index, bool animated)
{
    m_inTransition = true;
    QPointer<ViewController> top = topViewController();
    QPointer<ViewController> newTop = m_stack.at(index);
    QList<QPointer<ViewController>> popped;
    for (ViewController *viewController : m_stack.mid(index + 1))
        popped.append(viewController);
    m_stack.resize(index + 1);
    if (m_shown) {
        top->beginAppearanceTransition(false, animated);
        if (newTop)
            newTop->beginAppearanceTransition(true, animated);
        showTop();
        if (top)
            top->endAppearanceTransition();
        if (newTop)
            newTop->endAppearanceTransition();
    } else {
        showTop();
    }
    // A lifecycle call may have deleted one of them already.
    QList<ViewController *> released;
    for (const QPointer<ViewController> &viewController : popped) {
        if (viewController) {
            released.append(viewController.data());
            release(viewController.data());
        }
    }
    finishTransition();
    return released;
}

void NavigationController::adopt(ViewController *viewController)
{
    viewController->setNavigationController(this);
    m_content->addWidget(viewController);
    connect(viewController, &QObject::destroyed, this, &NavigationController::forget);
}

void NavigationController::release(ViewController *viewController)
{
    disconnect(viewController, &QObject::destroyed, this, &NavigationController::forget);
    m_content->removeWidget(viewController);
    viewController->hide();
    viewController->setNavigationController(nullptr);
    viewController->deleteLater();
}

void NavigationController::showTop()
{
    ViewController *top = topViewController();
    if (!top) {
        m_bar->setTopItem(nullptr);
        return;
    }
    // The keyboard goes with the screens: a focus in the screen or the bar
    // that left would otherwise fall to whatever follows in the window.
    // The new screen holds it itself, with no control ringed until Tab
    // moves to one (Qt would hand it on to the next control in the chain).
    const QWidget *focus = QApplication::focusWidget();
    const bool keyboardHere = focus && (focus == this || isAncestorOf(focus));
    const bool alreadyOnTop = focus && (focus == top || top->isAncestorOf(focus));
    m_content->setCurrentWidget(top);
    ViewController *under = m_stack.size() > 1 ? m_stack.at(m_stack.size() - 2) : nullptr;
    m_bar->setTopItem(top->navigationItem(), under ? under->navigationItem() : nullptr);
    if (keyboardHere && !alreadyOnTop)
        top->setFocus(Qt::OtherFocusReason);
}

void NavigationController::layoutContent()
{
    const int barHeight = m_bar->isHidden() ? 0 : m_bar->sizeHint().height();
    m_bar->setGeometry(0, 0, width(), barHeight);
    // A translucent bar lies over the content, as on the phone.
    const int top = (m_bar->isHidden() || m_bar->isTranslucent()) ? 0 : barHeight;
    m_content->setGeometry(0, top, width(), std::max(0, height() - top));
    m_bar->raise();
}

void NavigationController::forget(QObject *viewController)
{
    for (qsizetype i = 0; i < m_stack.size(); ++i) {
        if (static_cast<QObject *>(m_stack.at(i)) == viewController) {
            m_stack.removeAt(i);
            BMLogger::sharedInstance().logFromModule(kModule, 2, "a screen on the stack was deleted from outside");
            showTop();
            return;
        }
    }
}

} // namespace Brightmere
