#pragma once

#include <QIcon>
#include <QPointer>
#include <QWidget>

class BMImageButton;
class BMLabel;
class QGridLayout;
class QLabel;
class QVBoxLayout;

namespace Brightmere {
class PageControl;
class ScrollView;
class TableView;
} // namespace Brightmere

/// How many pages the tutorial shows.
inline constexpr int kTutorialPages = 4;

/// The test screen's widgets, laid out: the framed panel (the chart, with the
/// tutorial over it until the first test; the start control, the speed
/// counter and the record control; the network's name) and under it the list
/// of spots, which takes the rest of the height. The panel keeps its phone
/// height and follows the window's width; the counter stays centred.
class BMWifiScanView : public QWidget
{
    Q_OBJECT

public:
    /// The chart runs this far under the panel's frame on both sides, and
    /// starts this far down the chart's area.
    static constexpr int kPlotSideOverhang = 20;
    /// See kPlotSideOverhang.
    static constexpr int kPlotTop = 5;

    /// The laid-out widgets, with the tutorial not yet built.
    explicit BMWifiScanView(QWidget *parent = nullptr);

    /// The framed panel.
    QWidget *viewBordered() const { return m_viewBordered; }
    /// The chart's area in the panel.
    QWidget *viewPlotHolderContainer() const { return m_viewPlotHolderContainer; }
    /// The chart's holder, made anew for every chart; the view places it.
    QWidget *viewPlotHolder() const { return m_viewPlotHolder.data(); }
    /// Replaces the chart's holder with a new one and returns it.
    QWidget *makePlotHolder();
    /// The start/stop control.
    BMImageButton *btnStartStop() const { return m_btnStartStop; }
    /// The record/reset control.
    BMImageButton *btnRecordReset() const { return m_btnRecordReset; }
    /// The sound control.
    BMImageButton *btnSound() const { return m_btnSound; }
    /// The "hold to average" note.
    BMLabel *lblHoldToAverage() const { return m_lblHoldToAverage; }
    /// The "preparing" note shown until the first result.
    BMLabel *lblPreparing() const { return m_lblPreparing; }
    /// The big speed figure.
    BMLabel *lblWifiSpeed() const { return m_lblWifiSpeed; }
    /// The unit under the figure ("Mbps").
    BMLabel *lblUnit() const { return m_lblUnit; }
    /// The network's name.
    BMLabel *lblSSID() const { return m_lblSSID; }
    /// The background behind the speed figure.
    QLabel *wifiCounterBackground() const { return m_wifiCounterBackground; }
    /// The list of spots.
    Brightmere::TableView *tblRecords() const { return m_tblRecords; }
    /// The tutorial's paged view; null once removed.
    Brightmere::ScrollView *scrollTutorial() const;
    /// The tutorial's page indicator; null once removed.
    Brightmere::PageControl *pageResults() const;

    /// The controls while a test runs (stop, record, the hold note) or not
    /// (start, reset), and every text of the panel in the current language.
    void showTesting(bool testing);
    /// Every text of the panel in the current language.
    void retranslate(bool testing);
    /// Titles the record/reset control: record while testing, reset otherwise.
    void updateRecordResetLabel(bool testing);
    /// The sound control's picture, and what a reader hears ("Sound, off").
    void showSound(bool on);
    /// The network's name, with the access point's address in grey.
    void showNetwork(const QString &ssid, const QString &bssid);
    /// The bar's menu icons, drawn in white so the bar needs no image files.
    static QIcon barIcon(bool dots);

    /// The list's bottom moves up by this much (to clear a keyboard).
    void setTblRecordsBottomConstraint(int constraint);

    /// The counter's look: "wifiCounter", or "wifiCounterRecording" with the
    /// figures in white; the speed's own colour comes back after recording.
    void setRecording(bool recording);

    /// Shows the kit's image of that name on a button or a label, and keeps the name.
    static void showImage(QWidget *view, const QString &name);
    /// The name of the image a widget shows now ("buttonStop.png"), as set by
    /// showImage; empty when none.
    static QString imageNameOf(const QWidget *view);

    /// The tutorial: its pages built (anew) over the chart, taken away for
    /// good, and its paging. pageSettled is the page a drag came to rest on,
    /// when it differs from the one the dots showed.
    void setupTutorial();
    /// True when it was still there.
    bool removeTutorial();
    /// The tutorial came to rest after a drag: the dots follow.
    void scrollViewDidEndDecelerating(Brightmere::ScrollView *scrollView);
    /// The tutorial's animated scroll ended: the dots follow.
    void scrollViewDidEndScrollingAnimation(Brightmere::ScrollView *scrollView);
    /// The dots were tapped: the tutorial scrolls to their page.
    void pageControlValueChanged();

Q_SIGNALS:
    /// The tutorial came to rest on page (from 0).
    void tutorialPageSettled(int page);

protected:
    /// Draws the panel's rounded frame.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void placeTutorialPages();
    bool isRecordingLook() const;
    void buildPanel();
    QLayout *buildCounterRow();
    void placePlotHolder();
    void showCounterImage();

    QVBoxLayout *m_layout = nullptr;
    QWidget *m_viewBordered = nullptr;
    QWidget *m_viewBorderedFrame = nullptr;
    QWidget *m_viewPlotHolderContainer = nullptr;
    QPointer<QWidget> m_viewPlotHolder;
    BMImageButton *m_btnStartStop = nullptr;
    BMImageButton *m_btnRecordReset = nullptr;
    BMImageButton *m_btnSound = nullptr;
    bool m_soundOn = false;
    BMLabel *m_lblHoldToAverage = nullptr;
    BMLabel *m_lblPreparing = nullptr;
    BMLabel *m_lblWifiSpeed = nullptr;
    BMLabel *m_lblUnit = nullptr;
    BMLabel *m_lblSSID = nullptr;
    QLabel *m_wifiCounterBackground = nullptr;
    Brightmere::TableView *m_tblRecords = nullptr;
    QPointer<Brightmere::ScrollView> m_scrollTutorial;
    QPointer<Brightmere::PageControl> m_pageResults;
    QString m_counterImageName;
    QColor m_lblWifiSpeedNormalColor;
    QString m_ssid;
    QString m_bssid;
};
