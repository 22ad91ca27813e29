#include "FZSpotsSetViewController.h"

#include "FZSpotsSetsHeaderCollectionViewCell.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/ui/BMMainButton.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QLabel>
#include <QVBoxLayout>

using Brightmere::IndexPath;

namespace {

const QString kModule = QStringLiteral("FZSpotsSetViewController");
// In points; the second line's 12 × 0.7 ends at the kit's smallest text.
constexpr int kFontPoints = 12;
constexpr double kSecondLineScale = 0.7;
constexpr int kButtonHeight = 48;

// First line bold black, second line small grey; the second line's face
// differs between the columns.
void styleTwoLines(FZAttributedText &text, bool italicSecondLine)
{
    const QString string = text.string();
    const qsizetype split = string.indexOf(QLatin1Char('\n'));
    const qsizetype firstLength = split < 0 ? string.size() : split;
    FZSpotsSetViewController::addTextAttributes(text, 0, firstLength, FZBaseCollectionViewController::systemFont(kFontPoints, QFont::Bold),
                                                Brightmere::Color::system(0));
    if (split < 0)
        return;
    FZSpotsSetViewController::addTextAttributes(
        text, split + 1, string.size() - split - 1,
        FZBaseCollectionViewController::systemFont(kFontPoints * kSecondLineScale, QFont::Normal, italicSecondLine),
        Brightmere::Color::colorWithHexString(QStringLiteral("999999")));
}

} // namespace

FZSpotsSetViewController::FZSpotsSetViewController(QWidget *parent)
    : FZBaseCollectionViewController(parent)
{
    m_continueRecordingButton = new BMMainButton(this);
    m_continueRecordingButton->setObjectName(QStringLiteral("continueRecordingButton"));
    // Larger text may take the title onto a second line.
    m_continueRecordingButton->setMinimumHeight(Brightmere::View::pixelsForTextPoints(kButtonHeight));
    connect(m_continueRecordingButton, &QPushButton::clicked, this,
            [this] { editSpotsSet(m_continueRecordingButton); });
    pageLayout()->addWidget(m_continueRecordingButton);
}

BMWifiScanVCEditSpotsSetSetter *FZSpotsSetViewController::editSpotsSetSetter() const
{
    return dynamic_cast<BMWifiScanVCEditSpotsSetSetter *>(m_editSpotsSetSetter.data());
}

BMGAScreenClass FZSpotsSetViewController::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("Saved Spots Screen"), metaObject());
}

void FZSpotsSetViewController::viewDidLoad()
{
    FZBaseCollectionViewController::viewDidLoad();
    replaceNativeBackButton();
    refreshUITexts();
}

void FZSpotsSetViewController::viewWillAppear(bool animated)
{
    if (!m_spotsSet)
        BMLogger::sharedInstance().logFromModule(kModule, 2, "shown without a spots set; the grid stays empty");
    prepareHeaderViewForTitle(m_spotsSet ? m_spotsSet->name() : QString());
    FZBaseCollectionViewController::viewWillAppear(animated);
}

void FZSpotsSetViewController::refreshUITexts()
{
    m_continueRecordingButton->setText(Brightmere::View::literalButtonText(
        BMI18NManager::stringForCode(QStringLiteral("fairzones_historical_result_saved_continue_recording"))));
    const QList<FZSpotsSetsHeaderCollectionViewCell *> cells = headerCells();
    for (FZSpotsSetsHeaderCollectionViewCell *cell : cells)
        configureHeaderCell(cell, cell->column());
}

void FZSpotsSetViewController::configureHeaderCell(FZSpotsSetsHeaderCollectionViewCell *cell, int column)
{
    // The headings are the localised words; the grid's own English titles
    // stay what titleForColumnWithIndex gives.
    const bool first = column == 0;
    FZAttributedText title(BMI18NManager::stringForCode(
        first ? QStringLiteral("fairzones_historical_result_saved_spot")
              : QStringLiteral("fairzones_historical_result_saved_speed")));
    if (first)
        setupFirstColumnStyle(title);
    else
        setupSecondColumnStyle(title);
    cell->setTitle(title);
    cell->setDetail(BMI18NManager::stringForCode(first ? QStringLiteral("fairzones_historical_result_saved_date")
                                                       : QStringLiteral("fairzones_historical_result_saved_ssid_bssid")));
    cell->detailLabel()->setAlignment(first ? Qt::AlignLeft : Qt::AlignHCenter);
    cell->setIconNamed(first ? sortImageName() : QString());
    // Before the first tap the spots are not in name order, though the arrow shows.
    cell->setSortInForce(m_spotsSet && m_spotsSet->isSortedAscending() != 0);
}

int FZSpotsSetViewController::numberOfRows() const
{
    return m_spotsSet ? int(m_spotsSet->spotsCount()) : 0;
}

double FZSpotsSetViewController::columnWidthProportionWithIndex(int index) const
{
    switch (index) {
    case 0:
        return 0.4;
    case 1:
        return 0.6;
    default:
        return 0.0;
    }
}

void FZSpotsSetViewController::willReloadData()
{
    m_sortedSpots = m_spotsSet ? m_spotsSet->sortedSpots() : WifiTestResult::List();
}

WifiTestResult::Ptr FZSpotsSetViewController::spotAt(int section) const
{
    if (section < 0 || section >= m_sortedSpots.size() || !m_sortedSpots.at(section)) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "no spot at row %@; the row stays empty",
                                                 QString::number(section));
        return nullptr;
    }
    return m_sortedSpots.at(section);
}

FZAttributedText FZSpotsSetViewController::textForCellWithIndexPath(const IndexPath &indexPath) const
{
    const WifiTestResult::Ptr spot = spotAt(indexPath.section());
    if (!spot)
        return FZAttributedText();
    if (indexPath.row() == 0) {
        FZAttributedText text(QStringLiteral("%1\n%2").arg(spot->label(), dateTextForSpot(*spot)));
        setupFirstColumnStyle(text);
        return text;
    }
    FZAttributedText text(QStringLiteral("%1 %2\n%3(%4)")
                              .arg(QString::number(spot->speedInMbps(), 'f', 2),
                                   BMI18NManager::stringForCode(QStringLiteral("Mbps")), spot->ssid(), spot->bssid()));
    setupSecondColumnStyle(text);
    return text;
}

FZAttributedText FZSpotsSetViewController::titleForColumnWithIndex(int index) const
{
    if (index == 0) {
        FZAttributedText title(QStringLiteral("Spot\nDate"));
        setupFirstColumnStyle(title);
        return title;
    }
    FZAttributedText title(QStringLiteral("Speed\nSSID(BSSID)"));
    setupSecondColumnStyle(title);
    return title;
}

void FZSpotsSetViewController::setupFirstColumnStyle(FZAttributedText &text)
{
    styleTwoLines(text, true);
}

void FZSpotsSetViewController::setupSecondColumnStyle(FZAttributedText &text)
{
    styleTwoLines(text, false);
    text.setAlignment(Qt::AlignHCenter);
}

void FZSpotsSetViewController::addTextAttributes(FZAttributedText &text, qsizetype start, qsizetype length,
                                                 const QFont &font, const QColor &color)
{
    QTextCharFormat format;
    format.setFont(font);
    format.setForeground(color);
    text.addAttributes(start, length, format);
}

void FZSpotsSetViewController::columnSelected(int column)
{
    if (column == 0)
        sortButtonTapped();
    else
        FZBaseCollectionViewController::columnSelected(column);
}

QString FZSpotsSetViewController::sortImageName() const
{
    const bool up = m_spotsSet && m_spotsSet->isSortedAscending() == 2;
    return up ? QStringLiteral("arrowUpIcon") : QStringLiteral("arrowDownIcon");
}

void FZSpotsSetViewController::sortButtonTapped()
{
    if (!m_spotsSet) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "sort asked without a spots set; nothing to sort");
        return;
    }
    m_spotsSet->toggleSorting();
    // The arrow follows in reloadData, which asks configureHeaderCell again.
    reloadData();
}

void FZSpotsSetViewController::editSpotsSet(QObject *sender)
{
    Q_UNUSED(sender)
    if (BMWifiScanVCEditSpotsSetSetter *setter = editSpotsSetSetter())
        setter->setSpotsSetToEdit(m_spotsSet);
    else
        BMLogger::sharedInstance().logFromModule(kModule, 1, "no test screen to continue recording on; going back only");
    if (Brightmere::NavigationController *navigation = navigationController())
        navigation->popToRootViewControllerAnimated(true);
    else
        BMLogger::sharedInstance().logFromModule(kModule, 2, "continue recording outside a navigation stack");
}

static FZSpotsSetsHeaderCollectionViewCell *headerCell(const QList<FZSpotsSetsHeaderCollectionViewCell *> &cells,
                                                       int column)
{
    return column < cells.size() ? cells.at(column) : nullptr;
}

QLabel *FZSpotsSetViewController::spotLabel() const
{
    auto *cell = headerCell(headerCells(), 0);
    return cell ? cell->titleLabel() : nullptr;
}

QLabel *FZSpotsSetViewController::dateLabel() const
{
    auto *cell = headerCell(headerCells(), 0);
    return cell ? cell->detailLabel() : nullptr;
}

QLabel *FZSpotsSetViewController::sortImage() const
{
    auto *cell = headerCell(headerCells(), 0);
    return cell ? cell->iconImageView() : nullptr;
}

QLabel *FZSpotsSetViewController::speedLabel() const
{
    auto *cell = headerCell(headerCells(), 1);
    return cell ? cell->titleLabel() : nullptr;
}

QLabel *FZSpotsSetViewController::ssidLabel() const
{
    auto *cell = headerCell(headerCells(), 1);
    return cell ? cell->detailLabel() : nullptr;
}
