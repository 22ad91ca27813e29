#pragma once

#include <QIcon>
#include <QRect>
#include <QWidget>

class QLabel;
class QHBoxLayout;

// One page of the test screen's tutorial: an illustration with a sentence
// under it, the text overlapping the picture's lower part (its light base)
// on purpose. The picture keeps its proportions, centred 10 points below the
// top and at most 75 high; the text, grey and centred, wraps in what is left
// 5 points in from the sides and the bottom, in lines no longer than
// kTextMaximumWidth on a wide page. Sizes are in points.
class BMFairzoneTutorialPageView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kImageTop = 10;
    static constexpr int kImageMaxHeight = 75;
    static constexpr int kTextOverlap = 20;
    static constexpr int kTextInset = 5;
    static constexpr int kTextFontPoints = 12;
    static constexpr int kTextMaximumWidth = 480;

    explicit BMFairzoneTutorialPageView(const QRect &frame, QWidget *parent = nullptr);

    // The framework's image of that name (none for an empty name) and the text.
    void configureWithImageName(const QString &imageName, const QString &text);

    QLabel *imgView() const { return m_imgView; }
    QLabel *lblText() const { return m_lblText; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void initialize();
    // The picture for the page's width, and where the text begins under it.
    void fitPicture();

    QLabel *m_imgView = nullptr;
    QHBoxLayout *m_textArea = nullptr;
    QLabel *m_lblText = nullptr;
    QIcon m_image;
};
