#include "FZCompareSpotsSetsViewController.h"

#include "FZSpotsSetsHeaderCollectionViewCell.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using Brightmere::IndexPath;
using Brightmere::Switch;

namespace {

const QString kModule = QStringLiteral("FZCompareSpotsSetsViewController");
// Text sizes in points; the details' 9.6 ends at the kit's smallest text.
constexpr int kHeadingPoints = 12;
constexpr double kDetailPoints = 9.6;
constexpr qreal kLabelPoints = 15;
// With the page's margin and spacing this leaves the grid ending
// kSwitchAreaHeight above the bottom.
constexpr int kPageMargin = 12;

QTextCharFormat fontFormat(const QFont &font)
{
    QTextCharFormat format;
    format.setFont(font);
    return format;
}

} // namespace

FZCompareSpotsSetsViewController::FZCompareSpotsSetsViewController(QWidget *parent)
    : FZBaseCollectionViewController(parent)
{
    auto *switchArea = new QWidget(this);
    switchArea->setObjectName(QStringLiteral("hideIdenticalArea"));
    // Larger text may take the label onto more lines: the area grows with it.
    if (Brightmere::View::textScale() > 1.0)
        switchArea->setMinimumHeight(kSwitchAreaHeight - 2 * kPageMargin);
    else
        switchArea->setFixedHeight(kSwitchAreaHeight - 2 * kPageMargin);
    auto *row = new QHBoxLayout(switchArea);
    row->setContentsMargins(4, 0, 4, 0);
    row->setSpacing(12);

    m_hideIdenticalDataLabel = new BMLabel(switchArea);
    m_hideIdenticalDataLabel->setObjectName(QStringLiteral("hideIdenticalDataLabel"));
    m_hideIdenticalDataLabel->setFont(Brightmere::View::fontOfSize(kLabelPoints));
    m_hideIdenticalDataLabel->setWordWrap(true);
    QPalette palette = m_hideIdenticalDataLabel->palette();
    palette.setColor(QPalette::WindowText, Brightmere::Color::system(0));
    m_hideIdenticalDataLabel->setPalette(palette);

    m_hideIdenticalSwitch = new Switch(switchArea);
    m_hideIdenticalSwitch->setObjectName(QStringLiteral("hideIdenticalSwitch"));
    // On, as the comparison starts: identical pairs hidden.
    m_hideIdenticalSwitch->setOn(true);
    connect(m_hideIdenticalSwitch, &Switch::toggled, this, [this] { hideIdenticalDataToggled(m_hideIdenticalSwitch); });

    row->addWidget(m_hideIdenticalDataLabel, 1);
    row->addWidget(m_hideIdenticalSwitch, 0, Qt::AlignVCenter);
    pageLayout()->addWidget(switchArea);
}

BMGAScreenClass FZCompareSpotsSetsViewController::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("Compare Sets Screen"), metaObject());
}

void FZCompareSpotsSetsViewController::viewDidLoad()
{
    FZBaseCollectionViewController::viewDidLoad();
    m_hideIdenticalSwitchIsOn = m_hideIdenticalSwitch->isOn();
    replaceNativeBackButton();
    refreshUITexts();
}

void FZCompareSpotsSetsViewController::viewWillAppear(bool animated)
{
    if (!m_spotsSetsComparison)
        BMLogger::sharedInstance().logFromModule(kModule, 2, "shown without a comparison; the grid stays empty");
    FZBaseCollectionViewController::viewWillAppear(animated);
}

void FZCompareSpotsSetsViewController::refreshUITexts()
{
    prepareHeaderViewForTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_compare_title")));
    m_hideIdenticalDataLabel->setText(
        BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_compare_hide_identical_data")));
    m_hideIdenticalSwitch->setAccessibleName(m_hideIdenticalDataLabel->text());
    const QList<FZSpotsSetsHeaderCollectionViewCell *> cells = headerCells();
    for (FZSpotsSetsHeaderCollectionViewCell *cell : cells) {
        cell->setTitle(titleForColumnWithIndex(cell->column()));
        configureHeaderCell(cell, cell->column());
    }
}

void FZCompareSpotsSetsViewController::configureHeaderCell(FZSpotsSetsHeaderCollectionViewCell *cell, int column)
{
    cell->setIconNamed(column == 0 ? sortImageName() : QString());
}

int FZCompareSpotsSetsViewController::numberOfRows() const
{
    return m_spotsSetsComparison ? int(m_spotsSetsComparison->count()) : 0;
}

FZAttributedText FZCompareSpotsSetsViewController::headerColumnAttributedString(const QString &text)
{
    FZAttributedText attributed(text);
    attributed.addAttributes(0, attributed.length(), fontFormat(systemFont(kHeadingPoints, QFont::Bold)));
    return attributed;
}

FZAttributedText FZCompareSpotsSetsViewController::titleForColumnWithIndex(int index) const
{
    if (index == 0)
        return headerColumnAttributedString(BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_saved_spot")));
    if (!m_spotsSetsComparison)
        return FZAttributedText();
    // Index 0 answers the second set's name: the crosswise headings are kept.
    return headerColumnAttributedString(m_spotsSetsComparison->nameForSetIndex(index - 1));
}

FZAttributedText FZCompareSpotsSetsViewController::textForRecord(const WifiTestResult::Ptr &record)
{
    if (!record)
        return FZAttributedText();
    const QString speedLine = QStringLiteral("%1 %2\n").arg(QString::number(record->speedInMbps(), 'f', 2),
                                                          BMI18NManager::stringForCode(QStringLiteral("bmMbps")));
    const QString networkLine = record->ssid() + QLatin1Char('\n');
    const QString accessPointLine = QStringLiteral("(%1)\n").arg(record->bssid());
    const QString date = dateTextForSpot(*record);

    FZAttributedText text(speedLine + networkLine + accessPointLine + date);
    const qsizetype restStart = speedLine.size();
    const qsizetype dateStart = restStart + networkLine.size() + accessPointLine.size();
    text.addAttributes(0, speedLine.size(), fontFormat(systemFont(kHeadingPoints, QFont::Bold)));
    text.addAttributes(restStart, dateStart - restStart, fontFormat(systemFont(kDetailPoints, QFont::Normal)));
    text.addAttributes(dateStart, date.size(), fontFormat(systemFont(kDetailPoints, QFont::Normal, true)));
    return text;
}

FZAttributedText FZCompareSpotsSetsViewController::textForCellWithIndexPath(const IndexPath &indexPath) const
{
    if (!m_spotsSetsComparison)
        return FZAttributedText();
    const int row = indexPath.section();
    switch (indexPath.row()) {
    case 0:
        return headerColumnAttributedString(m_spotsSetsComparison->spotNameAtIndex(row));
    case 1:
        return textForRecord(m_spotsSetsComparison->firstComparableSpotAtIndex(row));
    case 2:
        return textForRecord(m_spotsSetsComparison->secondComparableSpotAtIndex(row));
    default:
        return FZAttributedText();
    }
}

void FZCompareSpotsSetsViewController::columnSelected(int column)
{
    if (column == 0)
        sortButtonTapped();
    else
        FZBaseCollectionViewController::columnSelected(column);
}

QString FZCompareSpotsSetsViewController::sortImageName() const
{
    const bool up = m_spotsSetsComparison && m_spotsSetsComparison->isSortedByNameAscending();
    return up ? QStringLiteral("arrowUpIcon") : QStringLiteral("arrowDownIcon");
}

void FZCompareSpotsSetsViewController::sortButtonTapped()
{
    if (!m_spotsSetsComparison) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "sort asked without a comparison; nothing to sort");
        return;
    }
    m_spotsSetsComparison->toggleSortByName();
    reloadData();
}

void FZCompareSpotsSetsViewController::hideIdenticalDataToggled(Switch *sender)
{
    if (!sender) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "hide-identical change reported without its switch; ignored");
        return;
    }
    const bool on = sender->isOn();
    if (on == m_hideIdenticalSwitchIsOn)
        return;
    if (m_spotsSetsComparison)
        m_spotsSetsComparison->toggleExcludeIdenticalMatches();
    reloadData();
    m_hideIdenticalSwitchIsOn = on;
}

QLabel *FZCompareSpotsSetsViewController::headerTitle(int column) const
{
    const QList<FZSpotsSetsHeaderCollectionViewCell *> cells = headerCells();
    return column < cells.size() ? cells.at(column)->titleLabel() : nullptr;
}

QLabel *FZCompareSpotsSetsViewController::sortLabel() const
{
    return headerTitle(0);
}

QLabel *FZCompareSpotsSetsViewController::sortImage() const
{
    const QList<FZSpotsSetsHeaderCollectionViewCell *> cells = headerCells();
    return cells.isEmpty() ? nullptr : cells.first()->iconImageView();
}

QLabel *FZCompareSpotsSetsViewController::set1Label() const
{
    return headerTitle(1);
}

QLabel *FZCompareSpotsSetsViewController::set2Label() const
{
    return headerTitle(2);
}
