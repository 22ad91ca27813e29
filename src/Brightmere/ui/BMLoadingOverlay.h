#pragma once

#include <QPointer>
#include <QWidget>

class QVariantAnimation;

// What BMLoadingView puts over the key window: a dimmed layer that swallows
// every touch, with a spinning arc in the middle. The plain form holds the
// arc in a rounded card; the circle form shows a bare ring.
class BMLoadingOverlay : public QWidget
{
    Q_OBJECT

public:
    enum class Form { Plain, Circle };

    explicit BMLoadingOverlay(Form form, QWidget *parent = nullptr);

    Form form() const { return m_form; }

    // Covers the window and follows its size until detached.
    void attachTo(QWidget *window);
    void detach();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    Form m_form;
    qreal m_angle = 0.0;
    QVariantAnimation *m_spin = nullptr;
    QPointer<QWidget> m_window;
};
