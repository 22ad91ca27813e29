#include "DemoEventLog.h"

#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QFontMetrics>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QFont logFont(int pointSize, QFont::Weight weight)
{
    QFont font(QString::fromLatin1(Brightmere::View::kFontRegular), pointSize);
    font.setWeight(weight);
    return Brightmere::View::kitFont(font);
}

QString hex(const char *key)
{
    return Brightmere::Color::named(QString::fromLatin1(key)).name();
}

} // namespace

DemoEventLog::DemoEventLog(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("demoEventLog"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_header = new QPushButton(this);
    m_header->setObjectName(QStringLiteral("demoEventLogHeader"));
    // One line of the latest entry: the rest is in the opened log.
    m_header->setProperty("elidesOnPurpose", true);
    m_header->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_header->setFixedHeight(kCollapsedHeight);
    m_header->setFont(logFont(9, QFont::DemiBold));
    m_header->setStyleSheet(QStringLiteral("QPushButton { background: %1; color: %2; border: none;"
                                           " border-top: 1px solid %3; text-align: left; padding-left: 10px; }")
                                .arg(hex("fixed_dark_blue"), hex("fz_chart_back"), hex("strong_medium_blue")));
    connect(m_header, &QPushButton::clicked, this, [this] { setExpanded(!m_expanded); });
    layout->addWidget(m_header);

    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("demoEventLogText"));
    m_text->setReadOnly(true);
    m_text->setFont(logFont(8, QFont::Normal));
    m_text->setMaximumBlockCount(kCapacity);
    m_text->setStyleSheet(QStringLiteral("QPlainTextEdit { background: %1; color: %2; border: none; }")
                              .arg(hex("fixed_light_gray"), hex("medium_gray")));
    m_text->setVisible(false);
    layout->addWidget(m_text);

    setFixedHeight(kCollapsedHeight);
    updateHeader();
}

void DemoEventLog::append(const QString &line)
{
    m_lines << line;
    if (m_lines.size() > kCapacity)
        m_lines.remove(0, m_lines.size() - kCapacity);
    ++m_total;
    m_text->appendPlainText(line);
    m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum());
    updateHeader();
    Q_EMIT lineAppended(line);
}

void DemoEventLog::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    m_text->setVisible(expanded);
    setFixedHeight(expanded ? kExpandedHeight : kCollapsedHeight);
    updateHeader();
}

void DemoEventLog::clear()
{
    m_lines.clear();
    m_total = 0;
    m_text->clear();
    updateHeader();
}

void DemoEventLog::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateHeader();
}

void DemoEventLog::updateHeader()
{
    const QString title = BMI18NManager::stringForCode(QStringLiteral("demo_event_log"));
    QString text = QStringLiteral("%1 %2 (%3)").arg(m_expanded ? QStringLiteral("▾") : QStringLiteral("▸"), title)
                       .arg(m_total);
    if (!m_expanded && !m_lines.isEmpty())
        text += QStringLiteral("  ") + m_lines.constLast();
    // One line only: the strip never grows with a long event.
    const QFontMetrics metrics(m_header->font());
    m_header->setText(metrics.elidedText(text, Qt::ElideRight, qMax(80, width() - 20)));
}
