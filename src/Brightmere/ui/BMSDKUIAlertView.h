#pragma once

#include <Brightmere/SDKUIExport.h>

#include <Brightmere/platform/views/AlertAction.h>

#include <QList>
#include <QString>

#include <functional>

namespace Brightmere {
class Alert;
}

/// Builds every alert of the kit, with the localised "ok" and "cancel"
/// buttons. Building only: the caller presents the alert
/// (ViewController::presentAlert) or deletes it. Every button has the default
/// style; none takes the platform's cancel style.
class BRIGHTMERE_SDKUI_EXPORT BMSDKUIAlertView
{
public:
    /// What a button runs; may be empty.
    using Handler = std::function<void()>;

    /// "ok", which only closes; with a handler, also "cancel", which calls it.
    static Brightmere::Alert *alertControllerWithTitleOnCancel(const QString &title, const QString &message,
                                                               Handler onCancel);
    /// "ok", which calls the handler when there is one.
    static Brightmere::Alert *alertControllerWithTitleOnOK(const QString &title, const QString &message,
                                                           Handler onOK);
    /// The actions in list order; none gives an alert without buttons that
    /// only its dismissal closes.
    static Brightmere::Alert *alertControllerWithTitle(const QString &title, const QString &message,
                                                       const QList<Brightmere::AlertAction> &actions);
};
