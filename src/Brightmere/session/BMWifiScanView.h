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
    static constexpr int kPlotTop = 5;

    explicit BMWifiScanView(QWidget *parent = nullptr);

    QWidget *viewBordered() const { return m_viewBordered; }
    QWidget *viewPlotHolderContainer() const { return m_viewPlotHolderContainer; }
    /// The chart's holder, made anew for every chart; the view places it.
    QWidget *viewPlotHolder() const { return m_viewPlotHolder.data(); }
    QWidget *makePlotHolder();
    BMImageButton *btnStartStop() const { return m_btnStartStop; }
    BMImageButton *btnRecordReset() const { return m_btnRecordReset; }
    BMImageButton *btnSound() const { return m_btnSound; }
    BMLabel *lblHoldToAverage() const { return m_lblHoldToAverage; }
    BMLabel *lblPreparing() const { return m_lblPreparing; }
    BMLabel *lblWifiSpeed() const { return m_lblWifiSpeed; }
    BMLabel *lblUnit() const { return m_lblUnit; }
    BMLabel *lblSSID() const { return m_lblSSID; }
    QLabel *wifiCounterBackground() const { return m_wifiCounterBackground; }
    Brightmere::TableView *tblRecords() const { return m_tblRecords; }
    Brightmere::ScrollView *scrollTutorial() const;
    Brightmere::PageControl *pageResults() const;

    /// The controls while a test runs (stop, record, the hold note) or not
    /// (start, reset), and every text of the panel in the current language.
    void showTesting(bool testing);
    void retranslate(bool testing);
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

    /// The name of the image a widget shows now ("buttonStop.png"), as set by
    /// showImage; empty when none.
    static void showImage(QWidget *view, const QString &name);
    static QString imageNameOf(const QWidget *view);

    /// The tutorial: its pages built (anew) over the chart, taken away for
    /// good, and its paging. pageSettled is the page a drag came to rest on,
    /// when it differs from the one the dots showed.
    void setupTutorial();
    /// True when it was still there.
    bool removeTutorial();
    void scrollViewDidEndDecelerating(Brightmere::ScrollView *scrollView);
    void scrollViewDidEndScrollingAnimation(Brightmere::ScrollView *scrollView);
    void pageControlValueChanged();

Q_SIGNALS:
    void tutorialPageSettled(int page);

protected:
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
