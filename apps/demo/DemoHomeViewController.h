#pragma once

#include "core/BMWiFiTester.h"
#include "core/BMWiFiTesterDelegate.h"
#include "i18n/BMI18NNotificationSubscriber.h"
#include "platform/views/ViewController.h"

#include <memory>

class QLabel;
class QPushButton;

// The demo's first screen: the kit's name and version, and a live reading
// from the Wi-Fi tester with a start/stop button. Its title is a localised
// text, so a download from a localisation service shows in it.
class DemoHomeViewController : public Brightmere::ViewController,
                               private BMWiFiTesterDelegate,
                               private BMI18NNotificationSubscriber
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
    void notifyTextBundleAvailable(BMI18NNotification *notification) override;
    void notifyTextBundleNotAvailable(BMI18NNotification *notification) override;
    void showTexts();
    void toggleTest();
    void showState();

    std::unique_ptr<BMWiFiTester> m_tester;
    QLabel *m_speed = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_startStop = nullptr;
};
