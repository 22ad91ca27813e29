#pragma once

#include <Brightmere/SDKUIExport.h>

#include <Brightmere/ui/BMSDKUIBaseViewController.h>

class BMLabel;

namespace Brightmere {
class Switch;
}

/// Which changes to a recorded spot ask first: replacing its measurement,
/// copying it, deleting it. A switch on means "ask first"; it shows the
/// negation of the matching "always" preference of BMSDKUISettings, and a
/// change is written at once (there is no save or cancel).
///
/// Replace and copy lock each other: each is enabled only while the other is
/// on, so at most one of the two can be turned off. When both "always"
/// preferences were set elsewhere, both switches show off and both stay
/// locked until the preferences change. Deletion is never locked.
class BRIGHTMERE_SDKUI_EXPORT FZMiscellaneousSettingsViewController : public BMSDKUIBaseViewController
{
    Q_OBJECT

public:
    /// The settings screen of the confirmations.
    explicit FZMiscellaneousSettingsViewController(QWidget *parent = nullptr);

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;

    /// The value-change actions of the three switches.
    void confirmReplacementOfMeasurementChanged(Brightmere::Switch *sender);
    /// The copy switch changed: off means "always copy" without asking.
    void confirmCopyOfMeasurementChanged(Brightmere::Switch *sender);
    /// The deletion switch changed: off means "always delete" without asking.
    void confirmDeletionOfMeasurementChanged(Brightmere::Switch *sender);

    /// Only one of copy and replace may be the silent answer: each switch is enabled while the other is on.
    void updateCopyAndReplaceSwitchesEnabled();

    /// The replacement switch's label.
    BMLabel *confirmReplacementLabel() const { return m_confirmReplacementLabel; }
    /// The copy switch's label.
    BMLabel *confirmCopyLabel() const { return m_confirmCopyLabel; }
    /// The deletion switch's label.
    BMLabel *confirmDeletionOfRecordingLabel() const { return m_confirmDeletionOfRecordingLabel; }
    /// The replacement switch.
    Brightmere::Switch *confirmReplacementSwitch() const { return m_confirmReplacementSwitch; }
    /// The copy switch.
    Brightmere::Switch *confirmCopySwitch() const { return m_confirmCopySwitch; }
    /// The deletion switch.
    Brightmere::Switch *confirmDeletionSwitch() const { return m_confirmDeletionSwitch; }

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;

private:
    void buildView();
    // The switches from the preferences, then the lock.
    void readPreferences();

    BMLabel *m_confirmReplacementLabel = nullptr;
    BMLabel *m_confirmCopyLabel = nullptr;
    BMLabel *m_confirmDeletionOfRecordingLabel = nullptr;
    Brightmere::Switch *m_confirmReplacementSwitch = nullptr;
    Brightmere::Switch *m_confirmCopySwitch = nullptr;
    Brightmere::Switch *m_confirmDeletionSwitch = nullptr;
};
