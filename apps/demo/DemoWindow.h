#pragma once

#include <QWidget>

class BMWifiScanVC;
class DemoEventLog;
class DemoHostDelegate;
class DemoMenu;
class DemoOptions;
class DemoReportActions;

namespace Brightmere {
class NavigationController;
class Storyboard;
} // namespace Brightmere

// The demo host's phone-sized window, built the way a customer's application
// embeds the kit: a navigation stack with the test screen at its root, the
// customer's name and password handed to the screen, the host's delegate and
// subscriptions, the host menu, reports on the saved-results screens, and
// the event log strip under the screens. The bar's tooltip says where the
// texts on screen came from.
class DemoWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kWidth = 375;
    static constexpr int kHeight = 667;

    // The storyboard holds the segues; null for the shared one.
    explicit DemoWindow(const DemoOptions &options, Brightmere::Storyboard *storyboard = nullptr,
                        QWidget *parent = nullptr);
    ~DemoWindow() override;

    BMWifiScanVC *scan() const { return m_scan; }
    Brightmere::NavigationController *navigation() const { return m_navigation; }
    DemoEventLog *eventLog() const { return m_log; }
    DemoHostDelegate *hostDelegate() const { return m_delegate; }
    DemoMenu *menu() const { return m_menu; }
    DemoReportActions *reportActions() const { return m_reports; }

private:
    Brightmere::NavigationController *m_navigation = nullptr;
    BMWifiScanVC *m_scan = nullptr;
    DemoEventLog *m_log = nullptr;
    DemoHostDelegate *m_delegate = nullptr;
    DemoMenu *m_menu = nullptr;
    DemoReportActions *m_reports = nullptr;
};
