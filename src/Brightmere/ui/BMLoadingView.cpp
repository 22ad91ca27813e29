#include "BMLoadingView.h"

#include "BMLoadingOverlay.h"
#include "BrightmereView.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/MainQueue.h>
#include <Brightmere/platform/views/KeyWindow.h>

namespace {

const QString kModule = QStringLiteral("BMLoadingView");
const QString kPlainForm = QStringLiteral("BMLoadingView");
const QString kCircleForm = QStringLiteral("BMCircleLoadingView");

QWidget *loadForm(const QString &name, BMLoadingOverlay::Form form)
{
    if (!Brightmere::View::hasNib(name)) {
        Brightmere::View::registerNib(name, [form](QWidget *parent) -> QWidget * {
            return new BMLoadingOverlay(form, parent);
        });
    }
    return Brightmere::View::loadFromNib(name);
}

} // namespace

BMLoadingView &BMLoadingView::sharedInstance()
{
    // A function-local static: made once, whichever thread asks first.
    static BMLoadingView instance;
    return instance;
}

void BMLoadingView::show()
{
    Brightmere::MainQueue::async([this] { present(false); });
}

void BMLoadingView::showCircle()
{
    Brightmere::MainQueue::async([this] { present(true); });
}

void BMLoadingView::hide()
{
    Brightmere::MainQueue::async([this] {
        m_hiding = true;
        remove(m_plain);
        remove(m_circle);
        m_shown = false;
        m_circleShown = false;
        m_hiding = false;
    });
}

void BMLoadingView::present(bool circle)
{
    bool &shown = circle ? m_circleShown : m_shown;
    QPointer<QWidget> &overlay = circle ? m_circle : m_plain;
    // An overlay goes with the window it was shown in: closing that window
    // while it was up must not keep it "shown" for good.
    if (shown && (!overlay || !overlay->isVisible()))
        shown = false;
    if (shown || m_hiding)
        return;
    if (!overlay) {
        overlay = loadForm(circle ? kCircleForm : kPlainForm,
                           circle ? BMLoadingOverlay::Form::Circle : BMLoadingOverlay::Form::Plain);
        if (!overlay)
            return; // the form registry has said why
    }
    QWidget *window = Brightmere::KeyWindow::keyWindow();
    if (!window) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "no key window: the %@ overlay is not shown",
                                                 circle ? "circle" : "plain");
        return;
    }
    if (auto *kitOverlay = qobject_cast<BMLoadingOverlay *>(overlay.data())) {
        kitOverlay->attachTo(window);
    } else {
        overlay->setParent(window);
        overlay->setGeometry(window->rect());
    }
    overlay->show();
    overlay->raise();
    shown = true;
}

void BMLoadingView::remove(QPointer<QWidget> &overlay)
{
    if (!overlay)
        return;
    if (auto *kitOverlay = qobject_cast<BMLoadingOverlay *>(overlay.data())) {
        kitOverlay->detach();
    } else {
        overlay->hide();
        overlay->setParent(nullptr);
    }
}
