#pragma once

#include "core/BMWiFiTester.h"
#include "core/BMWiFiTesterDelegate.h"
#include "platform/views/ViewController.h"

#include <memory>

class QLabel;
class QPushButton;

// The demo's first screen: the kit's name and version, and a live reading
// from the Wi-Fi tester with a start/stop button.
class DemoHomeViewController : public Brightmere::ViewController, private BMWiFiTesterDelegate
{
    Q_OBJECT

public:
    explicit DemoHomeViewController(QWidget *parent = nullptr);
    ~DemoHomeViewController() override;

protected:
    void viewDidLoad() override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

private:
    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result) override;
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override;
    void toggleTest();
    void showState();

    std::unique_ptr<BMWiFiTester> m_tester;
    QLabel *m_speed = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_startStop = nullptr;
};
