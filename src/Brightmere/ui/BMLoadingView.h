#pragma once

#include <QPointer>
#include <QWidget>

// The loading overlay over the whole key window, shared by every screen:
// show() puts the plain overlay up, showCircle() the circle one, hide()
// takes both down. Each may be called from any thread: the view work is
// queued to the main thread and runs in call order.
//
// The overlays are the forms registered under "BMLoadingView" and
// "BMCircleLoadingView" (Brightmere::View::registerNib; the kit registers a
// BMLoadingOverlay for each unless the host did first). A form is made on
// first use and kept for later calls.
class BMLoadingView
{
public:
    static BMLoadingView &sharedInstance();

    // Nothing happens while that overlay is already up or a hide is being
    // carried out; without a key window the call is logged and dropped.
    void show();
    void showCircle();
    void hide();

    // Main thread only; what is up now, for screens and tests.
    bool isShown() const { return m_shown; }
    bool isCircleShown() const { return m_circleShown; }
    QWidget *overlay() const { return m_plain.data(); }
    QWidget *circleOverlay() const { return m_circle.data(); }

private:
    BMLoadingView() = default;

    void present(bool circle);
    void remove(QPointer<QWidget> &overlay);

    // Touched on the main thread only.
    QPointer<QWidget> m_plain;
    QPointer<QWidget> m_circle;
    bool m_shown = false;
    bool m_circleShown = false;
    bool m_hiding = false;
};
