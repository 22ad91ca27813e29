#pragma once

class BMSpeedRecordCell;

/// What a spot row tells the screen that lists it: name edits, the hold on
/// its re-record control, and a swipe into editing.
class BMSpeedRecordDelegate
{
public:
    virtual ~BMSpeedRecordDelegate() = default;

    virtual void didBeginEditingSpeedRecord(BMSpeedRecordCell *cell) = 0;
    virtual void didEndEditingSpeedRecord(BMSpeedRecordCell *cell) = 0;
    /// A hold began; exactly one finish or cancel follows at most.
    virtual void didStartTapReRecordView(BMSpeedRecordCell *cell) = 0;
    virtual void didFinishTapReRecordView(BMSpeedRecordCell *cell) = 0;
    virtual void didCancelTapReRecordView(BMSpeedRecordCell *cell) = 0;
    virtual void didEnterInEditMode(BMSpeedRecordCell *cell) = 0;
};
