#include "DemoHomeViewController.h"

#include "core/BMSDKBackend.h"
#include "core/BMSimulatedNetwork.h"
#include "core/BMTesterFactory.h"
#include "i18n/BMI18NManager.h"
#include "i18n/BMI18NNotification.h"
#include "resources/FrameworkBundle.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

DemoHomeViewController::DemoHomeViewController(QWidget *parent)
    : ViewController(parent)
{
    showTexts();
    BMI18NNotification::subscribe(this, BMNotificationDelivery::MainThread);
}

DemoHomeViewController::~DemoHomeViewController()
{
    BMI18NNotification::unsubscribe(this);
}

void DemoHomeViewController::showTexts()
{
    setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_title")));
}

void DemoHomeViewController::notifyTextBundleAvailable(BMI18NNotification *)
{
    showTexts();
}

void DemoHomeViewController::notifyTextBundleNotAvailable(BMI18NNotification *)
{
    // The texts held stay in use.
}

void DemoHomeViewController::viewDidLoad()
{
    setObjectName(QStringLiteral("demoHome"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QStringLiteral("#demoHome { background: #f4f7f9; }"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 32, 24, 32);

    auto *name = new QLabel(QStringLiteral("BrightmereMobileSDKUI"), this);
    QFont nameFont = name->font();
    nameFont.setPointSize(18);
    nameFont.setBold(true);
    name->setFont(nameFont);
    name->setAlignment(Qt::AlignCenter);
    auto *version = new QLabel(QStringLiteral("version %1 (build %2)")
                                   .arg(Brightmere::FrameworkBundle::shortVersion(),
                                        Brightmere::FrameworkBundle::buildVersion()),
                               this);
    version->setAlignment(Qt::AlignCenter);
    version->setStyleSheet(QStringLiteral("color: #6b7c86;"));

    m_speed = new QLabel(QStringLiteral("0.0"), this);
    QFont speedFont = m_speed->font();
    speedFont.setPointSize(44);
    speedFont.setBold(true);
    m_speed->setFont(speedFont);
    m_speed->setAlignment(Qt::AlignCenter);
    m_speed->setStyleSheet(QStringLiteral("color: #3593da;"));
    auto *unit = new QLabel(QStringLiteral("Mbps"), this);
    unit->setAlignment(Qt::AlignCenter);
    m_status = new QLabel(this);
    m_status->setAlignment(Qt::AlignCenter);
    m_status->setWordWrap(true);

    m_startStop = new QPushButton(this);
    m_startStop->setMinimumHeight(44);
    m_startStop->setStyleSheet(QStringLiteral(
        "QPushButton { background: #70BE7B; color: white; border-radius: 22px; font-weight: bold; }"));
    connect(m_startStop, &QPushButton::clicked, this, &DemoHomeViewController::toggleTest);

    layout->addWidget(name);
    layout->addWidget(version);
    layout->addStretch();
    layout->addWidget(m_speed);
    layout->addWidget(unit);
    layout->addWidget(m_status);
    layout->addStretch();
    layout->addWidget(m_startStop);

    m_tester = BMTesterFactory::createWiFiTesterWithSDKCustomer(QStringLiteral("demo"), QString(), true);
    m_tester->initializeWithAppId(QCoreApplication::applicationName(), std::nullopt, QString(), {});
    m_tester->setResultDelegate(this);
    showState();
}

void DemoHomeViewController::viewDidAppear(bool animated)
{
    // The demo measures at once; the kit's test screen waits for the user.
    if (!m_tester->isRunning())
        toggleTest();
}

void DemoHomeViewController::viewWillDisappear(bool animated)
{
    m_tester->stop();
    showState();
}

void DemoHomeViewController::toggleTest()
{
    if (m_tester->isRunning())
        m_tester->stop();
    else
        m_tester->start();
    showState();
}

void DemoHomeViewController::showState()
{
    m_startStop->setText(m_tester->isRunning() ? QStringLiteral("Stop") : QStringLiteral("Start"));
    if (!m_tester->isRunning())
        m_status->setText(QStringLiteral("Stopped"));
    else if (BMSDKBackend::kind() == BMSDKBackend::Kind::Simulated)
        m_status->setText(QStringLiteral("Walking through %1…").arg(BMSimulatedNetwork::shared().ssid()));
    else
        m_status->setText(QStringLiteral("Measuring %1").arg(BMSDKBackend::systemDownloadUrl().toString()));
}

void DemoHomeViewController::wiFiTesterDidFinishSetupWithError(BMWiFiTester *, const std::optional<BMError> &error)
{
    if (error)
        m_status->setText(error->localizedDescription());
}

void DemoHomeViewController::wiFiTesterDidUpdateWithTestResult(BMWiFiTester *, const WifiTestResult::Ptr &result)
{
    m_speed->setText(QString::number(result->speedInMbps(), 'f', 1));
}

void DemoHomeViewController::wiFiTesterDidFinishWithError(BMWiFiTester *, const std::optional<BMError> &error)
{
    showState();
    if (error)
        m_status->setText(error->localizedDescription());
}
