#include "FZMiscellaneousSettingsViewController.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QBoxLayout>
#include <QFrame>

using Brightmere::Switch;
using Brightmere::View::pixelsForPoints;

namespace {

const QString kModule = QStringLiteral("FZMiscellaneousSettingsViewController");

// In points.
constexpr int kSideMargin = 16;
constexpr int kGroupTop = 24;
constexpr int kRowVerticalMargin = 10;
constexpr int kRowMinimumHeight = 52;
constexpr int kLabelToSwitch = 12;
constexpr qreal kLabelPoints = 16;
// On a wide window the rows keep this width, centred, rather than putting
// each switch far from its label.
constexpr int kReadableWidth = 600;
// Up to kReadableWidth, the group takes all the width and the sides none.
constexpr int kGroupStretch = 10000;

// A hairline between rows, inset on the left as grouped lists draw it.
QWidget *separator(QWidget *parent)
{
    auto *holder = new QWidget(parent);
    auto *layout = new QHBoxLayout(holder);
    layout->setContentsMargins(pixelsForPoints(kSideMargin), 0, 0, 0);
    auto *line = new QWidget(holder);
    line->setFixedHeight(pixelsForPoints(1));
    Brightmere::View::setBackgroundColor(line, Brightmere::Color::system(3));
    layout->addWidget(line);
    return holder;
}

// One row: the label takes the width the switch leaves and wraps.
QWidget *row(BMLabel *label, Switch *toggle, QWidget *parent)
{
    auto *holder = new QWidget(parent);
    holder->setMinimumHeight(pixelsForPoints(kRowMinimumHeight));
    auto *layout = new QHBoxLayout(holder);
    const int side = pixelsForPoints(kSideMargin);
    const int vertical = pixelsForPoints(kRowVerticalMargin);
    layout->setContentsMargins(side, vertical, side, vertical);
    layout->setSpacing(pixelsForPoints(kLabelToSwitch));
    label->setParent(holder);
    toggle->setParent(holder);
    layout->addWidget(label, 1);
    layout->addWidget(toggle, 0, Qt::AlignVCenter);
    return holder;
}

BMLabel *makeLabel(const QString &objectName)
{
    auto *label = new BMLabel;
    label->setObjectName(objectName);
    label->setFont(Brightmere::View::fontOfSize(kLabelPoints));
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Brightmere::Color::system(0));
    label->setPalette(palette);
    return label;
}

// A change without a switch says nothing about the user's wish: logged, and
// the preference stays as it is.
bool isSender(const Switch *sender, const char *which)
{
    if (sender)
        return true;
    BMLogger::sharedInstance().logFromModule(kModule, 2, "%@ change reported without its switch; ignored", which);
    return false;
}

Switch *makeSwitch(const QString &objectName)
{
    auto *toggle = new Switch;
    toggle->setObjectName(objectName);
    return toggle;
}

} // namespace

FZMiscellaneousSettingsViewController::FZMiscellaneousSettingsViewController(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
    buildView();
}

void FZMiscellaneousSettingsViewController::buildView()
{
    Brightmere::View::setBackgroundColor(this, Brightmere::Color::system(4));

    m_confirmReplacementLabel = makeLabel(QStringLiteral("confirmReplacementLabel"));
    m_confirmCopyLabel = makeLabel(QStringLiteral("confirmCopyLabel"));
    m_confirmDeletionOfRecordingLabel = makeLabel(QStringLiteral("confirmDeletionOfRecordingLabel"));
    m_confirmReplacementSwitch = makeSwitch(QStringLiteral("confirmReplacementSwitch"));
    m_confirmCopySwitch = makeSwitch(QStringLiteral("confirmCopySwitch"));
    m_confirmDeletionSwitch = makeSwitch(QStringLiteral("confirmDeletionSwitch"));

    auto *group = new QWidget(this);
    group->setObjectName(QStringLiteral("confirmationsGroup"));
    Brightmere::View::setBackgroundColor(group, Brightmere::Color::system(2));
    auto *rows = new QVBoxLayout(group);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(row(m_confirmReplacementLabel, m_confirmReplacementSwitch, group));
    rows->addWidget(separator(group));
    rows->addWidget(row(m_confirmCopyLabel, m_confirmCopySwitch, group));
    rows->addWidget(separator(group));
    rows->addWidget(row(m_confirmDeletionOfRecordingLabel, m_confirmDeletionSwitch, group));

    group->setMaximumWidth(pixelsForPoints(kReadableWidth));
    auto *centre = new QHBoxLayout;
    centre->addStretch(1);
    centre->addWidget(group, kGroupStretch);
    centre->addStretch(1);
    auto *page = new QVBoxLayout(this);
    page->setContentsMargins(0, pixelsForPoints(kGroupTop), 0, 0);
    page->addLayout(centre);
    page->addStretch(1);

    // A user's flip only: setting a switch from the preferences is no change.
    connect(m_confirmReplacementSwitch, &Switch::clicked, this,
            [this] { confirmReplacementOfMeasurementChanged(m_confirmReplacementSwitch); });
    connect(m_confirmCopySwitch, &Switch::clicked, this,
            [this] { confirmCopyOfMeasurementChanged(m_confirmCopySwitch); });
    connect(m_confirmDeletionSwitch, &Switch::clicked, this,
            [this] { confirmDeletionOfMeasurementChanged(m_confirmDeletionSwitch); });
}

BMGAScreenClass FZMiscellaneousSettingsViewController::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("Miscellaneous Screen"), metaObject());
}

void FZMiscellaneousSettingsViewController::refreshUITexts()
{
    setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_miscellaneous")));
    m_confirmReplacementLabel->setText(
        BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_misc_confirm_replacement")));
    m_confirmCopyLabel->setText(BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_misc_confirm_copy")));
    m_confirmDeletionOfRecordingLabel->setText(
        BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_misc_confirm_deletion")));
    m_confirmReplacementSwitch->setAccessibleName(m_confirmReplacementLabel->text());
    m_confirmCopySwitch->setAccessibleName(m_confirmCopyLabel->text());
    m_confirmDeletionSwitch->setAccessibleName(m_confirmDeletionOfRecordingLabel->text());
}

void FZMiscellaneousSettingsViewController::viewDidLoad()
{
    BMSDKUIBaseViewController::viewDidLoad();
    refreshUITexts();
    readPreferences();
}

void FZMiscellaneousSettingsViewController::viewWillAppear(bool animated)
{
    BMSDKUIBaseViewController::viewWillAppear(animated);
    // The test screen's confirmation popup writes the same preferences; a
    // screen that was covered meanwhile shows them as they are now.
    readPreferences();
}

void FZMiscellaneousSettingsViewController::readPreferences()
{
    const BMSDKUISettings &settings = BMSDKUISettings::sharedInstance();
    m_confirmReplacementSwitch->setOn(!settings.alwaysReplaceRecording());
    m_confirmCopySwitch->setOn(!settings.alwaysCopyRecording());
    m_confirmDeletionSwitch->setOn(!settings.alwaysDeleteRecording());
    updateCopyAndReplaceSwitchesEnabled();
}

void FZMiscellaneousSettingsViewController::confirmReplacementOfMeasurementChanged(Switch *sender)
{
    if (!isSender(sender, "replacement"))
        return;
    BMSDKUISettings::sharedInstance().setAlwaysReplaceRecording(!sender->isOn());
    updateCopyAndReplaceSwitchesEnabled();
}

void FZMiscellaneousSettingsViewController::confirmCopyOfMeasurementChanged(Switch *sender)
{
    if (!isSender(sender, "copy"))
        return;
    BMSDKUISettings::sharedInstance().setAlwaysCopyRecording(!sender->isOn());
    updateCopyAndReplaceSwitchesEnabled();
}

void FZMiscellaneousSettingsViewController::confirmDeletionOfMeasurementChanged(Switch *sender)
{
    if (!isSender(sender, "deletion"))
        return;
    BMSDKUISettings::sharedInstance().setAlwaysDeleteRecording(!sender->isOn());
}

void FZMiscellaneousSettingsViewController::updateCopyAndReplaceSwitchesEnabled()
{
    // A re-record asks once, offering both, and asks nothing when either is
    // "always": only one of the two may be the silent answer.
    m_confirmCopySwitch->setEnabled(m_confirmReplacementSwitch->isOn());
    m_confirmReplacementSwitch->setEnabled(m_confirmCopySwitch->isOn());
}
