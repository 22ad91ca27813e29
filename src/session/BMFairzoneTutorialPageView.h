#pragma once

#include <QRect>
#include <QWidget>

class QLabel;

// One page of the test screen's tutorial: an illustration with a sentence
// under it, the text overlapping the picture's lower part.
class BMFairzoneTutorialPageView : public QWidget
{
    Q_OBJECT

public:
    explicit BMFairzoneTutorialPageView(const QRect &frame, QWidget *parent = nullptr);

    // The framework's image of that name (none for an empty name) and the text.
    void configureWithImageName(const QString &imageName, const QString &text);

    QLabel *imgView() const { return m_imgView; }
    QLabel *lblText() const { return m_lblText; }

private:
    void initialize();

    QLabel *m_imgView = nullptr;
    QLabel *m_lblText = nullptr;
};
