#pragma once

class BMSpeedRecordCell;

/// What a spot row tells the screen that lists it: name edits, the hold on
/// its re-record control, and a swipe into editing.
class BMSpeedRecordDelegate
{
public:
    virtual ~BMSpeedRecordDelegate() = default;

    /// The user began typing the spot's name.
    virtual void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell) = 0;
    /// The user ended typing the spot's name.
    virtual void didEndEditingSpeedRecord(BMSpeedRecordCell *cell) = 0;
    /// A hold began; exactly one finish or cancel follows at most.
    virtual void didStartTapReRecordView(BMSpeedRecordCell *cell) = 0;
    /// The hold ended on the control: the spot is measured again.
    virtual void didFinishTapReRecordView(BMSpeedRecordCell *cell) = 0;
    /// The hold was let go outside the control: nothing changes.
    virtual void didCancelTapReRecordView(BMSpeedRecordCell *cell) = 0;
    /// The row was swiped into editing (deleting).
    virtual void didEnterInEditMode(BMSpeedRecordCell *cell) = 0;
};
