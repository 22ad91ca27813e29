#include "BMSpotsSetSaveFlow.h"

#include "BMWifiTestSession.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/core/BMSDKNetworkUtilities.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/popups/FZLabelOptionsPopup.h>
#include <Brightmere/popups/FZOptionsPopup.h>
#include <Brightmere/popups/FZTextViewOptionsPopup.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>

#include <QDateTime>

using namespace Brightmere;

const char BMSpotsSetSaveFlow::kShowSavedSpotsSegue[] = "showSavedSpotsSegue";

BMSpotsSetSaveFlow::BMSpotsSetSaveFlow(BMWifiTestSession *session, BMSDKUIBaseViewController *screen,
                                       QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_screen(screen)
{
}

FZTextViewOptionsPopup *BMSpotsSetSaveFlow::saveCurrentSpotAlert() const
{
    return m_saveCurrentSpotAlert.data();
}

void BMSpotsSetSaveFlow::showHistoricalResultsOptions()
{
    if (m_session->recordedSpeeds().isEmpty()) {
        showSavedSpots();
        return;
    }
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions(
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_title")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_view_saved_list")),
         BMI18NManager::stringForCode(QStringLiteral("cancel"))});
    QPointer<BMSpotsSetSaveFlow> self(this);
    popup->setOptionChosenBlock([self](int index) {
        if (!self)
            return;
        if (index == 1)
            self->showSaveCurrentSpotSetScreen();
        else if (index == 2)
            self->showSavedSpots();
    });
    popup->show();
}

void BMSpotsSetSaveFlow::showSaveCurrentSpotSetScreen()
{
    QPointer<BMSpotsSetSaveFlow> self(this);
    FZTextViewOptionsPopup *popup = FZTextViewOptionsPopup::popupWithOptions(
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save_alert_title")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save_alert_message")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_save_alert_save")),
         BMI18NManager::stringForCode(QStringLiteral("cancel"))},
        [self](QLineEdit *textField) {
            textField->setPlaceholderText(BMI18NManager::stringForCode(
                QStringLiteral("fairzones_historical_results_save_alert_title_placeholder")));
            textField->setAccessibleName(textField->placeholderText());
            textField->setMaxLength(FZHistoricalResultSpotsSet::kMaxTitleLength);
            if (!self)
                return;
            // A set loaded for editing proposes its own title.
            textField->setText(self->m_session->spotsSetName());
            self->m_spotNameTextField = textField;
        },
        FZOptionsPopup::Horizontal);
    popup->setOptionChosenBlock([self](int index) {
        if (self && index == 2)
            self->saveCurrentSpotSet();
    });
    popup->show();
    if (QLineEdit *field = popup->textField()) {
        field->setFocus(Qt::OtherFocusReason);
        // Typing replaces the proposed title rather than adding to it.
        field->selectAll();
    }
    m_saveCurrentSpotAlert = popup;
}

void BMSpotsSetSaveFlow::saveCurrentSpotSet()
{
    const QString title = m_spotNameTextField ? m_spotNameTextField->text().trimmed() : QString();
    if (m_session->recordedSpeeds().isEmpty()) {
        log(2, QStringLiteral("no spots to save"));
        return;
    }
    if (title.isEmpty()) {
        showTitleCannotBeNil();
        return;
    }
    if (FZHistoricalResultSpotsSet::spotsSetWithName(title)) {
        showSpotsSetAlreadyExistsDialogWithName(title);
        return;
    }
    m_session->setSpotsSetName(title);
    saveCurrentSpotSetWithName(title);
}

void BMSpotsSetSaveFlow::saveCurrentSpotSetWithName(const QString &name)
{
    const QString ssid = BMSDKNetworkUtilities::currentWifiSSID().value_or(QString());
    const double now = BMSDKBackend::clock().now() + Clock::kReferenceDateUnixSeconds;
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(qint64(now * 1000.0), Qt::UTC);
    if (!FZHistoricalResultSpotsSet::saveSetWithName(name, ssid, date, m_session->recordedSpeeds())) {
        // The store has logged why; the run stays on screen, so nothing is lost.
        log(3, StringFormat::print("the run could not be saved as '%@'", name));
        if (m_screen)
            m_screen->alertControllerWithTitle(
                BMI18NManager::stringForCode(QStringLiteral("bmOops")),
                BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_failed_message")));
        return;
    }
    showSavedSpots();
}

void BMSpotsSetSaveFlow::showTitleCannotBeNil()
{
    FZLabelOptionsPopup *popup = FZLabelOptionsPopup::popupWithOptions(
        {BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_title_nil_title")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_title_nil_message")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_title_nil_ok"))},
        FZOptionsPopup::Vertical);
    popup->show();
}

void BMSpotsSetSaveFlow::showSpotsSetAlreadyExistsDialogWithName(const QString &name)
{
    const QString title = StringFormat::print(
        "'%@' %@", name,
        BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_already_exist_title")));
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions(
        {title, BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_already_exist_cancel")),
         BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_save_already_exist_confirm"))},
        FZOptionsPopup::Horizontal);
    QPointer<BMSpotsSetSaveFlow> self(this);
    popup->setOptionChosenBlock([self, name](int index) {
        if (!self)
            return;
        // Back to the prompt, which proposes spotsSetName again, not the
        // rejected title.
        if (index == 1)
            self->showSaveCurrentSpotSetScreen();
        // Replacing keeps spotsSetName as it was, on purpose.
        else if (index == 2)
            self->saveCurrentSpotSetWithName(name);
    });
    popup->show();
}

void BMSpotsSetSaveFlow::showSavedSpots()
{
    if (m_screen)
        m_screen->performSegueWithIdentifier(QString::fromLatin1(kShowSavedSpotsSegue), nullptr);
}

void BMSpotsSetSaveFlow::log(int level, const QString &message) const
{
    BMLogger::sharedInstance().log(QStringLiteral("BMWifiScanVC"), level, message);
}
