#include "DemoWindow.h"

#include "DemoEventLog.h"
#include "DemoHostDelegate.h"
#include "DemoMenu.h"
#include "DemoOptions.h"
#include "DemoReportActions.h"
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/Storyboard.h>
#include <Brightmere/session/BMWifiScanVC.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QVBoxLayout>

DemoWindow::DemoWindow(const DemoOptions &options, Brightmere::Storyboard *storyboard, QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("demoWindow"));
    setWindowTitle(QStringLiteral("Brightmere demo"));
    Brightmere::View::setBackgroundColor(this, Brightmere::Color::named(QStringLiteral("fz_chart_back")));

    // The log first: the delegate writes to it from the screen's first load on.
    m_log = new DemoEventLog(this);
    m_delegate = new DemoHostDelegate(m_log, this);

    m_scan = new BMWifiScanVC;
    if (storyboard)
        m_scan->setStoryboard(storyboard);
    m_scan->setSdkCustomer(options.customer);
    m_scan->setSdkPassword(options.password);
    m_scan->setFzDelegate(m_delegate);
    m_navigation = new Brightmere::NavigationController(m_scan, this);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_navigation, 1);
    layout->addWidget(m_log);

    m_menu = new DemoMenu(m_navigation, m_scan, m_log, this);
    connect(m_delegate, &DemoHostDelegate::menuRequested, m_menu, [this] { m_menu->show(); });
    m_reports = new DemoReportActions(m_log, this);
    m_reports->registerOn(storyboard ? storyboard : Brightmere::Storyboard::main());

    Brightmere::NavigationBar *bar = m_navigation->navigationBar();
    bar->setToolTip(DemoHostDelegate::textsSource());
    connect(m_delegate, &DemoHostDelegate::textsSourceChanged, bar, &QWidget::setToolTip);

    resize(kWidth, kHeight);
    // Popups and alerts of the kit cover the whole window.
    Brightmere::KeyWindow::makeKeyWindow(this);
}

DemoWindow::~DemoWindow()
{
    if (Brightmere::KeyWindow::keyWindow() == this)
        Brightmere::KeyWindow::makeKeyWindow(nullptr);
}
