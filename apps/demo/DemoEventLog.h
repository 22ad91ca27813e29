#pragma once

#include <QStringList>
#include <QWidget>

class QPlainTextEdit;
class QPushButton;

// The host's record of what the kit told it, as a thin strip under the
// screens: its header shows the count and the newest line; a tap on it
// unfolds the last lines. Only the newest kCapacity lines are kept, so a
// long session cannot grow it without end.
class DemoEventLog : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kCapacity = 200;
    static constexpr int kCollapsedHeight = 26;
    static constexpr int kExpandedHeight = 170;

    explicit DemoEventLog(QWidget *parent = nullptr);

    void append(const QString &line);
    QStringList lines() const { return m_lines; }
    // Every line ever appended, including those no longer kept.
    int total() const { return m_total; }
    bool isExpanded() const { return m_expanded; }
    void setExpanded(bool expanded);
    void clear();
    QPushButton *header() const { return m_header; }

Q_SIGNALS:
    void lineAppended(const QString &line);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void updateHeader();

    QStringList m_lines;
    int m_total = 0;
    bool m_expanded = false;
    QPushButton *m_header = nullptr;
    QPlainTextEdit *m_text = nullptr;
};
