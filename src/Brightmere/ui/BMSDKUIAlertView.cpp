#include "BMSDKUIAlertView.h"

#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/views/Alert.h>

using Brightmere::Alert;
using Brightmere::AlertAction;

Alert *BMSDKUIAlertView::alertControllerWithTitleOnCancel(const QString &title, const QString &message,
                                                          Handler onCancel)
{
    auto *alert = new Alert(title, message);
    alert->addAction(AlertAction(BMI18NManager::stringForCode(QStringLiteral("ok")), AlertAction::Style::Default));
    if (onCancel) {
        alert->addAction(AlertAction(BMI18NManager::stringForCode(QStringLiteral("cancel")),
                                     AlertAction::Style::Default, std::move(onCancel)));
    }
    return alert;
}

Alert *BMSDKUIAlertView::alertControllerWithTitleOnOK(const QString &title, const QString &message, Handler onOK)
{
    auto *alert = new Alert(title, message);
    alert->addAction(AlertAction(BMI18NManager::stringForCode(QStringLiteral("ok")), AlertAction::Style::Default,
                                 std::move(onOK)));
    return alert;
}

Alert *BMSDKUIAlertView::alertControllerWithTitle(const QString &title, const QString &message,
                                                  const QList<AlertAction> &actions)
{
    auto *alert = new Alert(title, message);
    for (const AlertAction &action : actions)
        alert->addAction(action);
    return alert;
}
