#include "FZSavedSpotsCell.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKGeneralUtilities.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/FocusRingOverlay.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QLabel>

namespace {

constexpr int kSideMargin = 16;
constexpr int kIconSize = 24;
// Text sizes in points.
constexpr qreal kNamePoints = 17;
constexpr qreal kDatePoints = 13;
constexpr int kNameHeight = 22;
constexpr int kDateHeight = 18;
constexpr int kLineGap = 2;
// The hairline under each row.
constexpr int kSeparatorHeight = 1;
constexpr int kRowHeight = 64;

BMLabel *makeLabel(QWidget *parent, const QString &objectName, qreal points, QFont::Weight weight, const QColor &color)
{
    auto *label = new BMLabel(parent);
    label->setObjectName(objectName);
    label->setFont(Brightmere::View::fontOfSize(points, weight));
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

} // namespace

FZSavedSpotsCell::FZSavedSpotsCell(QWidget *parent)
    : BMTableViewCell(parent)
{
    setReuseIdentifier(QString::fromLatin1(kReuseIdentifier));
    Brightmere::View::setBackgroundColor(this, Brightmere::Color::system(3));

    m_content = new QWidget(this);
    m_content->setObjectName(QStringLiteral("contentView"));
    m_content->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_nameTextView = makeLabel(m_content, QStringLiteral("nameTextView"), kNamePoints, QFont::DemiBold,
                               Brightmere::Color::system(0));
    // A long name is cut with an ellipsis where the row ends (layoutContent).
    m_nameTextView->setProperty("elidesOnPurpose", true);
    m_dateTextView = makeLabel(m_content, QStringLiteral("dateTextView"), kDatePoints, QFont::Normal,
                               Brightmere::Color::system(1));
    m_comparableIconImageView = new QLabel(m_content);
    m_comparableIconImageView->setObjectName(QStringLiteral("comparableIconImageView"));
    m_comparableIconImageView->setPixmap(
        Brightmere::Image::named(QStringLiteral("iconComparable")).pixmap(kIconSize, kIconSize));
    m_comparableIconImageView->hide();
    // Reached with Tab: Enter opens the set, Space picks it while sets are
    // being picked, Delete asks to delete it. A click leaves the focus where
    // it was.
    setFocusPolicy(Qt::TabFocus);
    new Brightmere::FocusRingOverlay(this);
    // Under the strip the table adds while the row is swiped.
    m_content->lower();
    paintBackground();
}

void FZSavedSpotsCell::setupWithSpotsSet(const FZHistoricalResultSpotsSet::Ptr &spotsSet, int mode)
{
    m_spotsSet = spotsSet;
    if (!spotsSet) {
        BMLogger::sharedInstance().logFromModule(QStringLiteral("FZSavedSpotsCell"), 2,
                                                 "asked to show no set; the row stays empty");
        m_nameTextView->clear();
        m_dateTextView->clear();
        m_comparableIconImageView->hide();
        return;
    }
    m_nameTextView->setText(spotsSet->name());
    m_dateTextView->setText(BMSDKGeneralUtilities::stringWithYYMMDDHMMFormatFromDate(spotsSet->date()));
    setAccessibleName(spotsSet->name() + QStringLiteral(", ") + m_dateTextView->text());
    setDeleteAccessibleName(
        Brightmere::StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("a11y_delete")), spotsSet->name()));
    // The mark only means something while sets are being picked.
    m_comparableIconImageView->setVisible(mode == 1 && spotsSet->isComparable());
    layoutContent();
}

void FZSavedSpotsCell::setSelected(bool selected, bool animated)
{
    BMTableViewCell::setSelected(selected, animated);
    m_showsSelection = selected;
    setAccessibleSelected(selected);
    paintBackground();
}

void FZSavedSpotsCell::resizeEvent(QResizeEvent *event)
{
    BMTableViewCell::resizeEvent(event);
    layoutContent();
}

double FZSavedSpotsCell::height()
{
    return Brightmere::View::pixelsForTextPoints(kRowHeight);
}

void FZSavedSpotsCell::layoutContent()
{
    m_content->setGeometry(0, 0, width(), qMax(0, QWidget::height() - kSeparatorHeight));
    // Whether the mark is to be shown, not whether it shows now: a row is
    // set up while it waits hidden in the reuse pool, and is not laid out
    // again when the table shows it at the same size.
    const int iconSpace = !m_comparableIconImageView->isHidden() ? kIconSize + kSideMargin : 0;
    const int textWidth = qMax(0, width() - 2 * kSideMargin - iconSpace);
    const int nameHeight = Brightmere::View::pixelsForTextPoints(kNameHeight);
    const int dateHeight = Brightmere::View::pixelsForTextPoints(kDateHeight);
    const int textTop = (m_content->height() - nameHeight - kLineGap - dateHeight) / 2;
    m_nameTextView->setGeometry(kSideMargin, textTop, textWidth, nameHeight);
    m_dateTextView->setGeometry(kSideMargin, textTop + nameHeight + kLineGap, textWidth, dateHeight);
    // A long name is cut where the row ends rather than running under the mark.
    m_nameTextView->setText(m_spotsSet ? QFontMetrics(m_nameTextView->font())
                                             .elidedText(m_spotsSet->name(), Qt::ElideRight, textWidth)
                                       : QString());
    m_comparableIconImageView->setGeometry(width() - kSideMargin - kIconSize, (m_content->height() - kIconSize) / 2,
                                           kIconSize, kIconSize);
}

void FZSavedSpotsCell::paintBackground()
{
    const QColor background = m_showsSelection ? Brightmere::Color::named(QStringLiteral("fz_compare_set"))
                                               : Brightmere::Color::system(4);
    Brightmere::View::setBackgroundColor(m_content, background);
    // The secondary label grey as it shows on this background, darkened
    // until it reads there.
    QPalette palette = m_dateTextView->palette();
    palette.setColor(QPalette::WindowText, Brightmere::Color::withContrast(Brightmere::Color::system(1), background,
                                                                           Brightmere::Color::kTextContrast));
    m_dateTextView->setPalette(palette);
}
