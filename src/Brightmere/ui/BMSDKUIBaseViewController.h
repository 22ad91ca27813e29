#pragma once

#include <Brightmere/SDKUIExport.h>

#include "BMGAScreenClass.h"
#include "BMSDKUIAlertView.h"
#include <Brightmere/i18n/BMI18NNotificationSubscriber.h>
#include <Brightmere/i18n/BMLanguageChangeSubscriber.h>
#include <Brightmere/platform/views/ViewController.h>

#include <QList>
#include <QPointer>

namespace Brightmere {
class BarButtonItem;
class Clock;
}

/// The screen every screen of the kit derives from. Each appearance posts one
/// "kScreenChange" with the screen's analytics name and class before the
/// screen's own appearance work (a subclass calls this class's
/// viewWillAppear first), shows the status bar and re-reads the texts.
/// refreshUITexts also runs on every layout pass and when the language or
/// the downloaded texts change, so it must be cheap and idempotent.
///
/// The alert helpers may be called from any thread: the alert is built and
/// presented on the main thread after the current work, and not at all when
/// the screen is gone by then (its handlers are then never called).
class BRIGHTMERE_SDKUI_EXPORT BMSDKUIBaseViewController : public Brightmere::ViewController,
                                                          private BMLanguageChangeSubscriber,
                                                          private BMI18NNotificationSubscriber
{
    Q_OBJECT

public:
    /// The platform's status-bar styles; the kit's screens are light on dark.
    enum StatusBarStyle { StatusBarStyleDefault = 0, StatusBarStyleLightContent = 1 };

    /// A screen whose view is built on its first appearance.
    explicit BMSDKUIBaseViewController(QWidget *parent = nullptr);
    ~BMSDKUIBaseViewController() override;

    /// Whether this screen hides the status bar.
    bool statusBarHidden() const { return m_statusBarHidden; }
    /// Hides or shows the status bar while this screen is on top.
    void setStatusBarHidden(bool hidden);
    /// Whether the status bar is hidden while this screen is on top; statusBarHidden() unless a screen says otherwise.
    virtual bool prefersStatusBarHidden() const { return m_statusBarHidden; }
    /// The status-bar style this screen asks for (a StatusBarStyle).
    virtual int preferredStatusBarStyle() const { return StatusBarStyleLightContent; }
    /// Asks the window to read the status-bar wishes again.
    void setNeedsStatusBarAppearanceUpdate();

    /// "BMBaseViewController" and the screen's class; screens give their own name.
    virtual BMGAScreenClass screenNameAndClassForEventTracker() const;

    /// Sets every visible text from the localisation manager; nothing here.
    virtual void refreshUITexts() {}

    /// Kept for screens that ask for it: logs, and changes nothing.
    void setScreenBackground(bool background);

    /// Shows the window-wide loading overlay; may be called from any thread.
    void showLoading();
    /// Shows the round loading overlay; may be called from any thread.
    void showCircleLoading();
    /// Hides the loading overlay.
    void hideLoading();

    /// Makes the navigation bar see-through (logged and nothing else outside a stack).
    void setNavigationBarTransparent();
    /// Gives the navigation bar its own drawing back.
    void resetNavigationBarToDefault();

    /// The uppermost screen of the navigation stack that is of the class or
    /// a subclass; null when none is or the screen is in no stack.
    ViewController *findViewControllerOfClass(const QMetaObject &cls) const;
    template<typename T>
    /// The same, for the class T.
    T *findViewControllerOfClass() const
    {
        return static_cast<T *>(findViewControllerOfClass(T::staticMetaObject));
    }

    /// A 200 x 44 title view with the text in bold white, centred, shrunk to fit.
    void prepareHeaderViewForTitle(const QString &title);
    /// The kit's "iconBack" arrow in place of the bar's own back button.
    void replaceNativeBackButton();
    /// What the back arrow does: pops this screen.
    void backAction(QObject *sender);

    /// True, with the localised "no connection" alert, when the network
    /// cannot be reached; false, showing nothing, otherwise.
    bool showNoConnectivity();

    /// An alert with "ok" only.
    void alertControllerWithTitle(const QString &title, const QString &message);
    /// An alert with "ok" and, with a handler, "cancel"; see BMSDKUIAlertView.
    void alertControllerWithTitleOnCancel(const QString &title, const QString &message,
                                          BMSDKUIAlertView::Handler onCancel);
    /// An alert whose "ok" calls onOK.
    void alertControllerWithTitleOnOK(const QString &title, const QString &message, BMSDKUIAlertView::Handler onOK);
    /// An alert with the given buttons.
    void alertControllerWithTitle(const QString &title, const QString &message,
                                  const QList<Brightmere::AlertAction> &actions);
    /// An alert without buttons, closed after the given seconds; onFinish runs
    /// once it is gone (not when something else closed it first).
    void alertControllerWithTitleForSeconds(const QString &title, const QString &message, float seconds,
                                            BMSDKUIAlertView::Handler onFinish);

    /// The clock that times the timed alert; the system clock unless set.
    /// The clock must outlive the alerts it times.
    void setClock(Brightmere::Clock *clock);

Q_SIGNALS:
    /// The status-bar wishes changed; the window reads them again.
    void statusBarAppearanceUpdateRequested();

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillLayoutSubviews() override;
    /// The language or the downloaded texts changed while the view is loaded.
    /// refreshUITexts() unless a screen also has rows or cells to redraw.
    virtual void textsDidChange() { refreshUITexts(); }

private:
    void notifyLanguageChange(BMLanguageChangeNotification *notification) override;
    void notifyTextBundleAvailable(BMI18NNotification *notification) override;
    void notifyTextBundleNotAvailable(BMI18NNotification *notification) override;
    void presentLater(std::function<Brightmere::Alert *()> build);
    void refreshBackNames();

    bool m_statusBarHidden = false;
    Brightmere::Clock *m_clock = nullptr;
    QString m_headerTitle;
    QPointer<Brightmere::BarButtonItem> m_kitBackItem;
};
