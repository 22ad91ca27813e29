#include "FZSpotsSetsHeaderCollectionViewCell.h"

#include "FZAttributedText.h"
#include "FZSpotsSetsHeaderCollectionViewCellDelegate.h"
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/AccessibleWidget.h>
#include <Brightmere/platform/views/FocusRingOverlay.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace {
constexpr int kInset = 8;
constexpr int kIconSize = 14;
constexpr qreal kDetailPoints = 10;
}

FZSpotsSetsHeaderCollectionViewCell::FZSpotsSetsHeaderCollectionViewCell(QWidget *parent)
    : QWidget(parent)
{
    setAutoFillBackground(true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Brightmere::Color::colorWithHexString(QStringLiteral("E8E8E8")));
    setPalette(palette);

    m_titleLabel = new QLabel(this);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setTextFormat(Qt::RichText);
    m_titleLabel->setWordWrap(true);

    m_detailLabel = new QLabel(this);
    m_detailLabel->setObjectName(QStringLiteral("detailLabel"));
    m_detailLabel->setTextFormat(Qt::PlainText);
    m_detailLabel->setFont(Brightmere::View::fontOfSize(kDetailPoints));
    QPalette detailPalette = m_detailLabel->palette();
    detailPalette.setColor(QPalette::WindowText,
                           Brightmere::Color::withContrast(Brightmere::Color::colorWithHexString(QStringLiteral("999999")),
                                                           palette.color(QPalette::Window),
                                                           Brightmere::Color::kTextContrast));
    m_detailLabel->setPalette(detailPalette);
    m_detailLabel->hide();

    m_iconImageView = new QLabel(this);
    m_iconImageView->setObjectName(QStringLiteral("iconImageView"));
    m_iconImageView->setFixedSize(kIconSize, kIconSize);
    m_iconImageView->hide();

    auto *texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addStretch(1);
    texts->addWidget(m_titleLabel);
    texts->addWidget(m_detailLabel);
    texts->addStretch(1);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(kInset, 0, kInset, 0);
    row->setSpacing(6);
    row->addLayout(texts, 1);
    row->addWidget(m_iconImageView, 0, Qt::AlignVCenter);

    m_dividerView = new QWidget(this);
    m_dividerView->setObjectName(QStringLiteral("dividerView"));
    m_dividerView->setAutoFillBackground(true);
    QPalette dividerPalette = m_dividerView->palette();
    dividerPalette.setColor(QPalette::Window, Brightmere::Color::system(3).darker(115));
    m_dividerView->setPalette(dividerPalette);

    // Over everything else, so a tap anywhere on the cell lands on it.
    m_button = new QPushButton(this);
    m_button->setObjectName(QStringLiteral("headerButton"));
    m_button->setFlat(true);
    m_button->setStyleSheet(QStringLiteral("background: transparent; border: none;"));
    m_button->setCursor(Qt::PointingHandCursor);
    // Tab reaches the heading (Space sorts); a click leaves the focus where
    // it was.
    m_button->setFocusPolicy(Qt::TabFocus);
    new Brightmere::FocusRingOverlay(m_button);
    connect(m_button, &QPushButton::clicked, this, [this] { touchUpInside(); });
}

// The heading as a reader hears it: what a tap sorts by, and the order shown.
void FZSpotsSetsHeaderCollectionViewCell::nameSortButton()
{
    const QString key = !m_sortInForce                  ? QStringLiteral("a11y_sort_by")
                      : m_iconName == u"arrowUpIcon"     ? QStringLiteral("a11y_sort_ascending")
                      : m_iconName == u"arrowDownIcon" ? QStringLiteral("a11y_sort_descending")
                                                       : QStringLiteral("a11y_sort_by"); // i18n-key
    const QString name = Brightmere::StringFormat::print(BMI18NManager::stringForCode(key), m_sortTitle.toLower());
    if (m_button->accessibleName() == name)
        return;
    m_button->setAccessibleName(name);
    Brightmere::AccessibleWidget::announceName(m_button);
}

void FZSpotsSetsHeaderCollectionViewCell::setTitle(const FZAttributedText &title)
{
    m_titleLabel->setText(title.isEmpty() ? QString() : title.toHtml());
    m_sortTitle = title.string();
    nameSortButton();
    m_titleLabel->setAlignment(title.alignment() | Qt::AlignVCenter);
}

void FZSpotsSetsHeaderCollectionViewCell::setDetail(const QString &detail)
{
    m_detailLabel->setText(detail);
    m_detailLabel->setVisible(!detail.isEmpty());
}

void FZSpotsSetsHeaderCollectionViewCell::setSortInForce(bool inForce)
{
    m_sortInForce = inForce;
    nameSortButton();
}

void FZSpotsSetsHeaderCollectionViewCell::setIconNamed(const QString &name)
{
    m_iconName = name;
    nameSortButton();
    const QIcon icon = Brightmere::Image::named(name);
    // Drawn for the screen's pixel ratio, so the arrow stays sharp.
    m_iconImageView->setPixmap(icon.isNull() ? QPixmap() : icon.pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
    m_iconImageView->setVisible(!icon.isNull());
}

void FZSpotsSetsHeaderCollectionViewCell::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_dividerView->setGeometry(width() - 1, 0, 1, height());
    m_button->setGeometry(rect());
    m_button->raise();
}

void FZSpotsSetsHeaderCollectionViewCell::touchUpInside()
{
    if (m_delegate)
        m_delegate->viewCellTouchUpInside(this);
}
