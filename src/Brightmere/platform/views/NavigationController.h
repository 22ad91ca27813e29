#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QList>
#include <QWidget>

#include <deque>
#include <functional>

class QStackedWidget;

namespace Brightmere {

class NavigationBar;
class ViewController;

/// A stack of screens under a navigation bar. It owns the controllers on its
/// stack and drives their lifecycle in the platform's order:
///
///   push:        new did load (once), old will disappear, new will appear,
///                old did disappear, new did appear
///   pop:         top will disappear, new top will appear, top did
///                disappear, new top did appear
///   pop to root: as pop, with only the top and the root told; the screens
///                in between leave silently
///
/// The top controller appears when this widget is shown and disappears when
/// it is hidden; while hidden, pushes and pops change the stack only. Popped
/// controllers are released (deleteLater) after their did disappear. The
/// animated flag is passed through; transitions are instant. A push or pop
/// asked for from inside a lifecycle call runs once the current transition
/// has finished.
class BRIGHTMERE_SDKUI_EXPORT NavigationController : public QWidget
{
    Q_OBJECT

public:
    /// A stack holding rootViewController, which it owns.
    explicit NavigationController(ViewController *rootViewController, QWidget *parent = nullptr);
    ~NavigationController() override;

    /// Puts viewController on top of the stack and takes ownership of it.
    void pushViewController(ViewController *viewController, bool animated);
    /// Each returns what left the stack (nothing at the root, or when the
    /// call had to wait for a running transition).
    ViewController *popViewControllerAnimated(bool animated);
    /// Pops every screen above the root.
    QList<ViewController *> popToRootViewControllerAnimated(bool animated);
    /// Pops the screens above viewController.
    QList<ViewController *> popToViewController(ViewController *viewController, bool animated);

    /// The stack, root first.
    QList<ViewController *> viewControllers() const { return m_stack; }
    /// The screen on top; null for an empty stack.
    ViewController *topViewController() const { return m_stack.isEmpty() ? nullptr : m_stack.last(); }
    /// The bar above the screens.
    NavigationBar *navigationBar() const { return m_bar; }

    /// Whether the bar is hidden.
    bool isNavigationBarHidden() const;
    /// Hides or shows the bar.
    void setNavigationBarHidden(bool hidden, bool animated);

    /// The top screen's size hint with the bar's height; phone-sized for a screen without a layout.
    QSize sizeHint() const override;

protected:
    /// Tells the top screen it appears.
    void showEvent(QShowEvent *event) override;
    /// Tells the top screen it disappears.
    void hideEvent(QHideEvent *event) override;
    /// Lays out the bar and the screens.
    void resizeEvent(QResizeEvent *event) override;
    /// Tab goes through the bar's buttons left to right, then the top
    /// screen's controls in the screen's own order, then on to whatever
    /// follows the controller in its window. A table's rows come in row
    /// order, and a row out of view is scrolled in as Tab reaches it.
    bool focusNextPrevChild(bool next) override;
    /// Escape, Alt+Left and the platform's Back key do what the bar's back
    /// control does (Escape only where no control or overlay took it);
    /// Enter presses the focused button.
    void keyPressEvent(QKeyEvent *event) override;

private:
    QList<QWidget *> focusOrder() const;
    void goBack();
    bool deferIfBusy(std::function<void()> operation);
    void finishTransition();
    QList<ViewController *> popTo(int index, bool animated);
    void adopt(ViewController *viewController);
    void release(ViewController *viewController);
    void showTop();
    void layoutContent();
    void forget(QObject *viewController);

    NavigationBar *m_bar = nullptr;
    QStackedWidget *m_content = nullptr;
    QList<ViewController *> m_stack;
    bool m_shown = false;
    bool m_inTransition = false;
    std::deque<std::function<void()>> m_pending;
};

} // namespace Brightmere
