#pragma once

#include <QLabel>
#include <QStringList>

// A label in the kit's face: whatever weight and size it is given at
// creation keep, only the family changes (Brightmere::View::setupFont). A
// font set later is the caller's; call baseInit() again to map it.
//
// Its text is plain unless the caller sets another format: names a user
// typed and translated texts show as written, never as markup. A label
// with a maximum line count wraps its words onto at most that many lines
// and ends the last one with an ellipsis when the text is longer, rather
// than cutting through the glyphs.
class BMLabel : public QLabel
{
    Q_OBJECT

public:
    explicit BMLabel(QWidget *parent = nullptr);
    explicit BMLabel(const QString &text, QWidget *parent = nullptr);

    void baseInit();

    // 0 (the default): as many lines as QLabel makes.
    int maximumLines() const { return m_maximumLines; }
    void setMaximumLines(int lines);
    // The lines drawn at that width of the contents (plain text only).
    QStringList linesForWidth(int width) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool limitsLines() const;

    int m_maximumLines = 0;
};
