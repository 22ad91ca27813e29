#include "FZSpotsSetsCollectionViewCell.h"

#include "FZAttributedText.h"

#include <QHBoxLayout>
#include <QLabel>

namespace {
constexpr int kHorizontalInset = 5;
constexpr int kVerticalInset = 4;
}

FZSpotsSetsCollectionViewCell::FZSpotsSetsCollectionViewCell(QWidget *parent)
    : QWidget(parent)
{
    setAutoFillBackground(true);
    m_textLabel = new QLabel(this);
    m_textLabel->setObjectName(QStringLiteral("textLabel"));
    m_textLabel->setTextFormat(Qt::RichText);
    m_textLabel->setWordWrap(true);
    m_textLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(kHorizontalInset, kVerticalInset, kHorizontalInset, kVerticalInset);
    layout->addWidget(m_textLabel);
}

void FZSpotsSetsCollectionViewCell::setBackgroundColor(const QColor &color)
{
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, color);
    setPalette(palette);
}

QColor FZSpotsSetsCollectionViewCell::backgroundColor() const
{
    return palette().color(QPalette::Window);
}

void FZSpotsSetsCollectionViewCell::setAttributedText(const FZAttributedText &text)
{
    m_plainText = text.string();
    m_textLabel->setText(text.isEmpty() ? QString() : text.toHtml());
    m_textLabel->setAlignment(text.alignment() | Qt::AlignVCenter);
}
