#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>

namespace Brightmere {

class Alert;
class NavigationController;
class NavigationItem;
class Storyboard;
class StoryboardSegue;

/// A screen: a widget with the phone platform's lifecycle. viewDidLoad runs
/// exactly once, before the first appearance (or on loadViewIfNeeded()); the
/// appearance calls come in will/did pairs from the container that shows the
/// controller: its navigation controller, or, for a controller outside any
/// navigation controller, its own showing and hiding. viewWillLayoutSubviews
/// runs on every layout pass (a resize or a layout request) of a loaded view.
class BRIGHTMERE_SDKUI_EXPORT ViewController : public QWidget
{
    Q_OBJECT

public:
    /// Where the controller is in its appearance cycle.
    enum class Appearance { Disappeared, Appearing, Appeared, Disappearing };

    /// A controller whose view is not loaded yet.
    explicit ViewController(QWidget *parent = nullptr);
    ~ViewController() override;

    /// Whether viewDidLoad has run.
    bool isViewLoaded() const { return m_viewLoaded; }
    /// Runs viewDidLoad now if it has not run.
    void loadViewIfNeeded();

    /// The navigation controller whose stack holds this controller; null when none.
    NavigationController *navigationController() const;
    /// What the bar shows while this controller is on top; owned by the controller.
    NavigationItem *navigationItem() const { return m_navigationItem; }

    /// Setting the title also titles the navigation item.
    QString title() const { return m_title; }
    /// Changes the title.
    void setTitle(const QString &title);

    /// The registry this controller's segues are looked up in; the shared one
    /// unless set. A destination made by a segue inherits its source's.
    Storyboard *storyboard() const;
    /// Sets the registry segues are looked up in; null goes back to the shared one.
    void setStoryboard(Storyboard *storyboard);

    /// Looks the identifier up, creates the destination, lets this controller
    /// prepare it and pushes it on this controller's navigation controller.
    /// An unknown identifier or a controller outside any navigation
    /// controller is logged and nothing happens.
    void performSegueWithIdentifier(const QString &identifier, QObject *sender);

    /// Shows the alert over this controller's window; the window owns it from
    /// then on and it deletes itself once dismissed. One alert at a time: a
    /// second one while the first is shown is logged and dropped.
    void presentAlert(Alert *alert, bool animated, std::function<void()> completion = {});
    /// The alert shown over this controller's window; null when none.
    Alert *presentedAlert() const;

    /// The appearance calls, for containers. Each begin is matched by an end;
    /// repeated or out-of-order calls are ignored, so a controller never
    /// appears twice in a row.
    void beginAppearanceTransition(bool isAppearing, bool animated);
    /// Ends the transition begun last.
    void endAppearanceTransition();
    /// Where the controller is in its appearance cycle.
    Appearance appearance() const { return m_appearance; }

protected:
    /// Builds the screen; runs once, before the first appearance.
    virtual void viewDidLoad() {}
    /// The screen is about to appear.
    virtual void viewWillAppear(bool animated) {}
    /// The screen has appeared.
    virtual void viewDidAppear(bool animated) {}
    /// The screen is about to disappear.
    virtual void viewWillDisappear(bool animated) {}
    /// The screen has disappeared.
    virtual void viewDidDisappear(bool animated) {}
    /// The view is about to lay out its children; runs on every layout pass.
    virtual void viewWillLayoutSubviews() {}
    /// A segue from this controller is about to push its destination; set the destination up here.
    virtual void prepareForSegue(StoryboardSegue &segue, QObject *sender) {}

    /// Runs viewWillLayoutSubviews on a resize or a layout request.
    bool event(QEvent *event) override;
    /// Loads the view; drives the appearance calls when no navigation controller does.
    void showEvent(QShowEvent *event) override;
    /// Drives the disappearance calls when no container does.
    void hideEvent(QHideEvent *event) override;

private:
    void takeKeyboardFocus();
    friend class NavigationController;
    friend class StoryboardSegue;
    void setNavigationController(NavigationController *navigationController);
    void runLayoutPass();

    bool m_viewLoaded = false;
    bool m_inLayoutPass = false;
    bool m_transitionAnimated = false;
    Appearance m_appearance = Appearance::Disappeared;
    QString m_title;
    NavigationItem *m_navigationItem = nullptr;
    QPointer<NavigationController> m_navigationController;
    QPointer<Storyboard> m_storyboard;
    QPointer<Alert> m_presentedAlert;
};

} // namespace Brightmere
