#pragma once

#include <Brightmere/popups/FZOptionsPopup.h>

#include <QObject>
#include <QPointer>
#include <QString>

class BMWifiScanVC;
class DemoEventLog;

namespace Brightmere {
class NavigationController;
}

// The host's own menu, opened from the test screen's menu controls: the two
// settings screens and the saved sets (each by its storyboard segue, pushed
// over the test screen), the language and the event log strip. Reports and
// backups are offered where their data is shown (DemoReportActions).
class DemoMenu : public QObject
{
    Q_OBJECT

public:
    // The options in the order the menu shows them, after its title.
    enum Option {
        ConfirmationSettings = 1,
        SpotNameSettings,
        SavedSets,
        English,
        Spanish,
        EventLog,
        Cancel,
    };

    DemoMenu(Brightmere::NavigationController *navigation, BMWifiScanVC *scan, DemoEventLog *log,
             QObject *parent = nullptr);

    // Shows the menu in the key window; null when there is none to show it in.
    FZOptionsPopup *show();
    // The menu while it is shown; null otherwise.
    FZOptionsPopup *popup() const { return m_popup.data(); }
    // What each option does; false (logged) when it could not.
    bool choose(int option);

    bool openSegue(const QString &identifier);
    // setCurrentLanguage, then a refresh of the texts from the service.
    bool setLanguage(const QString &code);

private:
    QPointer<Brightmere::NavigationController> m_navigation;
    QPointer<BMWifiScanVC> m_scan;
    QPointer<DemoEventLog> m_log;
    QPointer<FZOptionsPopup> m_popup;
};
