#pragma once

#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/ui/BMTableViewCell.h>

class BMLabel;
class QLabel;

// One saved set in the list of saved sets: its name, the date it was saved
// and, in compare mode, a mark when it can be compared. A picked row shows
// the compare colour behind its content; the list decides which rows are
// picked, the row only draws it.
class FZSavedSpotsCell : public BMTableViewCell
{
    Q_OBJECT

public:
    static constexpr const char *kReuseIdentifier = "spotSetRow";

    explicit FZSavedSpotsCell(QWidget *parent = nullptr);

    // The design's 64 points, taller with larger text.
    static double height();

    // Shows the set for the list's mode (0 normal, 1 compare); everything
    // shown before is replaced, as rows are reused. A null set shows an
    // empty row (logged).
    void setupWithSpotsSet(const FZHistoricalResultSpotsSet::Ptr &spotsSet, int mode);
    FZHistoricalResultSpotsSet::Ptr spotsSet() const { return m_spotsSet; }

    // Kept, unlike the base's: the row shows it.
    void setSelected(bool selected, bool animated) override;
    bool showsSelection() const { return m_showsSelection; }

    BMLabel *nameTextView() const { return m_nameTextView; }
    BMLabel *dateTextView() const { return m_dateTextView; }
    QLabel *comparableIconImageView() const { return m_comparableIconImageView; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void layoutContent();
    void paintBackground();

    FZHistoricalResultSpotsSet::Ptr m_spotsSet;
    bool m_showsSelection = false;
    QWidget *m_content = nullptr;
    // Children of the row: they live exactly as long as it.
    BMLabel *m_nameTextView = nullptr;
    BMLabel *m_dateTextView = nullptr;
    QLabel *m_comparableIconImageView = nullptr;
};
