#include "DemoMenu.h"

#include "DemoEventLog.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/popups/FZOptionsPopup.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/storyboard/BMSDKUIStoryboard.h>

namespace {
const QString kModule = QStringLiteral("DemoHost");
}

DemoMenu::DemoMenu(Brightmere::NavigationController *navigation, BMWifiScanVC *scan, DemoEventLog *log,
                   QObject *parent)
    : QObject(parent)
    , m_navigation(navigation)
    , m_scan(scan)
    , m_log(log)
{
}

FZOptionsPopup *DemoMenu::show()
{
    if (m_popup)
        return m_popup;
    BMI18NManager *i18n = BMI18NManager::sharedInstance();
    FZOptionsPopup *popup = FZOptionsPopup::popupWithOptions({
        BMI18NManager::stringForCode(QStringLiteral("demo_menu_title")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_miscellaneous")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_spot_names")),
        BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_results_view_saved_list")),
        i18n->getLanguageDescription(QStringLiteral("en")),
        i18n->getLanguageDescription(QStringLiteral("es")),
        BMI18NManager::stringForCode(QStringLiteral("demo_event_log")),
        BMI18NManager::stringForCode(QStringLiteral("cancel")),
    });
    QPointer<DemoMenu> self(this);
    popup->setOptionChosenBlock([self](int index) {
        if (self)
            self->choose(index);
    });
    m_popup = popup;
    popup->show();
    return m_popup; // null when the popup found no window and went
}

bool DemoMenu::choose(int option)
{
    switch (option) {
    case ConfirmationSettings:
        return openSegue(QString::fromLatin1(BMSDKUIStoryboard::kShowMiscellaneousSettingsSegue));
    case SpotNameSettings:
        return openSegue(QString::fromLatin1(BMSDKUIStoryboard::kShowSpotNamesSettingsSegue));
    case SavedSets:
        return openSegue(QString::fromLatin1(BMSDKUIStoryboard::kShowSavedSpotsSegue));
    case English:
        return setLanguage(QStringLiteral("en"));
    case Spanish:
        return setLanguage(QStringLiteral("es"));
    case EventLog:
        if (m_log)
            m_log->setExpanded(!m_log->isExpanded());
        return m_log != nullptr;
    case Cancel:
        return true;
    default:
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no menu option %d; nothing done", option);
        return false;
    }
}

bool DemoMenu::openSegue(const QString &identifier)
{
    if (!m_navigation || !m_scan) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the test screen is gone; %@ not opened", identifier);
        return false;
    }
    // The menu opens its screens over the test screen, wherever the user was.
    m_navigation->popToRootViewControllerAnimated(false);
    m_scan->performSegueWithIdentifier(identifier, nullptr);
    return m_navigation->topViewController() != m_scan;
}

bool DemoMenu::setLanguage(const QString &code)
{
    BMI18NManager *i18n = BMI18NManager::sharedInstance();
    i18n->setCurrentLanguage(code);
    i18n->updateBundleTexts();
    if (i18n->currentLanguage() != code) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "language %@ is not available; %@ stays", code,
                                                 i18n->currentLanguage());
        return false;
    }
    return true;
}
