#include "BMSpeedRecordCell.h"

#include "BMSpeedRecordDelegate.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKBackend.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/Clock.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/FocusRingOverlay.h>
#include <Brightmere/platform/views/TableView.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCoreApplication>
#include <QWindow>
#include <QCompleter>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainterPath>
#include <QStringListModel>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

// The row's design on a 375-point-wide screen; the speed area keeps its
// width and the name takes what is left.
constexpr int kSideMargin = 12;
constexpr int kSpeedAreaWidth = 150;
constexpr int kNameToSpeedGap = 6;
constexpr int kNameHeight = 30;
constexpr int kUnitWidth = 34;
constexpr int kSpeedToUnitGap = 4;
constexpr int kAveragedSpeedTop = 2;
constexpr int kRowHeight = 38;
// A label needs a little more than its text's advance.
constexpr int kTextSlack = 4;
// Text sizes in points.
constexpr qreal kNameFontPoints = 15;
constexpr qreal kSpeedFontPoints = 18;
constexpr qreal kUnitFontPoints = 11;
constexpr qreal kAverageFontPoints = 10;
constexpr int kPopupCornerRadius = 8;

void setTextColor(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::Text, color);
    widget->setPalette(palette);
}

} // namespace

BMSpeedRecordCell::BMSpeedRecordCell(QWidget *parent)
    : BMTableViewCell(parent)
    , m_lblArea(new QLineEdit(this))
    , m_completer(new QCompleter(new QStringListModel(this), this))
    , m_lblSpeed(new QLabel(this))
    , m_lblUnit(new QLabel(this))
    , m_lblAverage(new QLabel(this))
    , m_viewTop(new QWidget(this))
    , m_viewBg(new QWidget(this))
    , m_reRecordView(new QWidget(this))
{
    setReuseIdentifier(cellIdentifier());
    m_recordingColor = Brightmere::Color::colorFromHex(QStringLiteral("70BE7B"));

    // The background at the bottom, everything shown on the top part above
    // it, and the re-record control over the speed area on top of all.
    m_viewBg->setAutoFillBackground(true);
    m_viewBg->lower();
    for (QWidget *part : {static_cast<QWidget *>(m_lblArea), static_cast<QWidget *>(m_lblSpeed),
                          static_cast<QWidget *>(m_lblUnit), static_cast<QWidget *>(m_lblAverage),
                          m_reRecordView})
        part->setParent(m_viewTop);
    m_reRecordView->raise();
    m_reRecordView->setObjectName(QStringLiteral("reRecordView"));
    m_reRecordView->installEventFilter(this);
    // Reached with Tab after the name; Space held on it is a finger held on
    // it. A click leaves the focus where it was.
    m_reRecordView->setFocusPolicy(Qt::TabFocus);
    new Brightmere::FocusRingOverlay(m_reRecordView);

    m_lblArea->setFont(Brightmere::View::fontOfSize(kNameFontPoints));
    setTextColor(m_lblArea, Brightmere::Color::system(0));
    for (QLabel *label : {m_lblSpeed, m_lblUnit, m_lblAverage})
        label->setTextFormat(Qt::PlainText);
    m_lblSpeed->setFont(Brightmere::View::fontOfSize(kSpeedFontPoints, QFont::DemiBold));
    m_lblSpeed->setAlignment(Qt::AlignRight | Qt::AlignTop);
    m_lblUnit->setFont(Brightmere::View::fontOfSize(kUnitFontPoints));
    m_lblUnit->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // The table's text blue, darkened until it reads on the darker of the
    // two row greys.
    setTextColor(m_lblUnit, Brightmere::Color::withContrast(Brightmere::Color::named(QStringLiteral("text_blue")),
                                                            Brightmere::Color::system(3),
                                                            Brightmere::Color::kTextContrast));
    m_lblAverage->setFont(Brightmere::View::fontOfSize(kAverageFontPoints));
    m_lblAverage->setAlignment(Qt::AlignRight | Qt::AlignTop);
    m_lblAverage->hide();

    awakeFromNib();
    Brightmere::View::followContrast(this, [this] {
        if (m_record)
            setupWithRecord(m_record, m_isEven);
    });
}

void BMSpeedRecordCell::awakeFromNib()
{
    // The name field: clear on the row's background, no autocorrection,
    // suggestions from the remembered names in a white rounded list.
    m_lblArea->setFrame(false);
    m_lblArea->setAutoFillBackground(false);
    QPalette palette = m_lblArea->palette();
    palette.setColor(QPalette::Base, Brightmere::Color::system(-1)); // clear
    m_lblArea->setPalette(palette);
    m_lblArea->setInputMethodHints(Qt::ImhNoPredictiveText);
    connect(m_lblArea, &QLineEdit::returnPressed, this, [this] { textFieldShouldReturn(); });
    // A rename typed in place is what a reader hears of the row at once,
    // not only when the row is next set up.
    connect(m_lblArea, &QLineEdit::textChanged, this, [this] {
        if (m_record)
            nameForReaders();
    });
    // A name typed whole leaves nothing to suggest: the list goes.
    connect(m_lblArea, &QLineEdit::textEdited, this, [this](const QString &text) {
        QTimer::singleShot(0, this, [this, text] {
            if (m_completer->completionCount() == 1
                && m_completer->currentCompletion().compare(text, Qt::CaseInsensitive) == 0)
                m_completer->popup()->hide();
        });
    });

    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setFilterMode(Qt::MatchContains);
    m_completer->setCompletionMode(QCompleter::PopupCompletion);
    m_lblArea->setCompleter(m_completer);
    // After the completer's own filter, so this one runs first: the
    // completer swallows the field's focus-out while its list is up, and the
    // end of an edit must be seen all the same.
    m_lblArea->installEventFilter(this);
    QAbstractItemView *popup = m_completer->popup();
    popup->setFont(m_lblArea->font());
    popup->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    popup->setStyleSheet(QStringLiteral("QListView { background-color: %1; border: 1px solid %2; border-radius: %3px;"
                                        " padding: 0px 4px; }"
                                        "QListView::item { padding: 4px 6px; }"
                                        "QListView::item:selected { background-color: %4; color: %1; }")
                             .arg(Brightmere::Color::system(2).name(),
                                  Brightmere::Color::named(QStringLiteral("disable_gray")).name())
                             .arg(kPopupCornerRadius)
                             .arg(Brightmere::Color::named(QStringLiteral("medium_blue")).name()));
    // The list is a window of its own: its corners are cut to the rounded
    // border, so the rows behind show there.
    popup->installEventFilter(this);

    m_defaultTextColor = m_lblUnit->palette().color(QPalette::WindowText);
}

BMSpeedRecordDelegate *BMSpeedRecordCell::delegate() const
{
    return m_delegateObject ? m_delegate : nullptr;
}

void BMSpeedRecordCell::setDelegate(BMSpeedRecordDelegate *delegate)
{
    m_delegate = delegate;
    m_delegateObject = dynamic_cast<QObject *>(delegate);
}

void BMSpeedRecordCell::setupWithRecord(const WifiTestResult::Ptr &record, bool isEven)
{
    m_record = record;
    m_isEven = isEven;
    const bool averaged = record && record->isAverage();

    const QColor averageBack = Brightmere::Color::named(QStringLiteral("fz_average_back"));
    const QColor textColor = averaged ? Brightmere::Color::fixedColor(m_recordingColor, averageBack) : m_defaultTextColor;
    for (QWidget *label : {m_lblAverage, m_lblSpeed, m_lblUnit})
        setTextColor(label, textColor);
    QPalette background = m_viewBg->palette();
    background.setColor(QPalette::Window, averaged ? averageBack : Brightmere::Color::system(isEven ? 3 : 4));
    m_viewBg->setPalette(background);
    m_lblAverage->setVisible(averaged);

    if (!record) {
        BMLogger::sharedInstance().log(QString::fromLatin1(metaObject()->className()), 3,
                                       QStringLiteral("no spot to show; the row is left blank"));
        m_lblArea->clear();
        m_lblSpeed->clear();
        m_lblUnit->clear();
        m_lblAverage->clear();
        layoutParts();
        return;
    }

    m_lblArea->setText(record->label());
    m_lblArea->setCursorPosition(0);
    m_lblSpeed->setText(BMI18NManager::formatNumber(record->speedInMbps(), 1, 1));
    m_lblArea->setAccessibleName(BMI18NManager::stringForCode(QStringLiteral("a11y_spot_name")));
    nameForReaders();
    m_lblUnit->setText(BMI18NManager::stringForCode(QStringLiteral("bmMbps")));

    double seconds = std::ceil(record->duration());
    if (!std::isfinite(seconds)) {
        BMLogger::sharedInstance().logFromModule(QString::fromLatin1(metaObject()->className()), 3,
                                                 "spot '%@' has no usable duration (%@); 0 seconds are shown",
                                                 record->label(), record->duration());
        seconds = 0.0;
    }
    if (seconds == 1.0) {
        m_lblAverage->setText(BMI18NManager::stringForCode(QStringLiteral("fairzones_record_averaged_over_one_second")));
    } else {
        const QString format = BMI18NManager::stringForCode(QStringLiteral("fairzones_record_averaged_over_format"));
        m_lblAverage->setText(Brightmere::StringFormat::print(format, int(std::clamp(seconds, -1e9, 1e9))));
    }
    layoutParts();
}

void BMSpeedRecordCell::nameForReaders()
{
    // Blank while being typed is no name; the spot keeps its own then.
    const QString typed = m_lblArea->text().trimmed();
    const QString name = typed.isEmpty() && m_record ? m_record->label() : typed;
    setAccessibleName(name + QStringLiteral(", ") + m_lblSpeed->text() + u' '
                      + BMI18NManager::stringForCode(QStringLiteral("bmMbps")));
    setDeleteAccessibleName(
        Brightmere::StringFormat::print(BMI18NManager::stringForCode(QStringLiteral("a11y_delete")), name));
}

void BMSpeedRecordCell::resizeEvent(QResizeEvent *event)
{
    BMTableViewCell::resizeEvent(event);
    layoutParts();
}

double BMSpeedRecordCell::height()
{
    return Brightmere::View::pixelsForTextPoints(kRowHeight);
}

void BMSpeedRecordCell::layoutParts()
{
    const int w = width();
    const int h = height();
    m_viewBg->setGeometry(0, 0, w, h);
    m_viewTop->setGeometry(0, 0, w, h);

    // Larger text widens the speed area as far as its figure or note needs.
    const QFontMetrics speedMetrics(m_lblSpeed->font());
    const QFontMetrics unitMetrics(m_lblUnit->font());
    const QFontMetrics noteMetrics(m_lblAverage->font());
    const int unitWidth = qMax(kUnitWidth, unitMetrics.horizontalAdvance(m_lblUnit->text()) + kTextSlack);
    const bool note = m_lblAverage->isVisibleTo(this);
    const int noteWidth = note ? noteMetrics.horizontalAdvance(m_lblAverage->text()) + kTextSlack + kSideMargin : 0;
    const int figureArea = std::max(kSpeedAreaWidth, speedMetrics.horizontalAdvance(m_lblSpeed->text()) + kTextSlack
                                                          + kSpeedToUnitGap + unitWidth + kSideMargin);
    // With larger text a note beside the name would cut the name: the note
    // then runs under both, and the name sits on the figure's line.
    const int nameNeeds = m_lblArea->fontMetrics().horizontalAdvance(m_lblArea->text()) + 2 * kTextSlack;
    const bool noteUnder = note && Brightmere::View::textScale() > 1.0
                           && w - qMax(figureArea, noteWidth) - kNameToSpeedGap - kSideMargin < nameNeeds;
    const int speedArea = noteUnder ? figureArea : qMax(figureArea, noteWidth);
    const int speedLeft = qMax(kSideMargin, w - speedArea);
    // Figure and unit share a baseline: in the middle of the row, or near its
    // top with the averaging note under them.
    const int baseline = note ? kAveragedSpeedTop + speedMetrics.ascent()
                              : (h + speedMetrics.ascent() - speedMetrics.descent()) / 2;
    const int noteTop = baseline + speedMetrics.descent() - 1;
    const int nameHeight = Brightmere::View::pixelsForTextPoints(kNameHeight);
    m_lblArea->setGeometry(kSideMargin, noteUnder ? kAveragedSpeedTop : (h - nameHeight) / 2,
                           qMax(0, speedLeft - kNameToSpeedGap - kSideMargin),
                           noteUnder ? noteTop - kAveragedSpeedTop : nameHeight);
    // The re-record control takes everything right of the name field.
    const QRect name = m_lblArea->geometry();
    m_reRecordView->setGeometry(name.x() + name.width(), 0, qMax(0, w - name.x() - name.width()), h);

    const int unitLeft = w - kSideMargin - unitWidth;
    m_lblUnit->setGeometry(unitLeft, baseline - unitMetrics.ascent(), unitWidth, unitMetrics.height());
    const int speedRight = unitLeft - kSpeedToUnitGap;
    m_lblSpeed->setGeometry(speedLeft, baseline - speedMetrics.ascent(), qMax(0, speedRight - speedLeft),
                            speedMetrics.height());
    const int noteLeft = noteUnder ? kSideMargin : speedLeft;
    m_lblAverage->setGeometry(noteLeft, noteTop, w - kSideMargin - noteLeft, noteMetrics.height());
}

void BMSpeedRecordCell::setEditing(bool editing, bool animated)
{
    BMTableViewCell::setEditing(editing, animated);
    if (editing && delegate())
        delegate()->didEnterInEditMode(this);
}

void BMSpeedRecordCell::log(const QString &message) const
{
    BMLogger::sharedInstance().log(QString::fromLatin1(metaObject()->className()), 2, message);
}

void BMSpeedRecordCell::reRecordViewOnTouchDown()
{
    if (isEditing())
        return;
    // A touch that lands while the list scrolls is part of the scroll.
    const Brightmere::TableView *table = Brightmere::TableView::enclosingTableView(this);
    if (table && table->panGestureRecognizerState() != Brightmere::TableView::GestureStatePossible)
        return;
    log(QStringLiteral("reRecordViewOnTouchDown"));
    log(Brightmere::StringFormat::print(QStringLiteral("pan gesture status %d"), m_gestureStatus));
    if (m_gestureStatus != 0) {
        log(QStringLiteral("Tap not started"));
        return;
    }
    log(QStringLiteral("Tap in progress"));
    m_gestureStatus = 1;
    if (BMSpeedRecordDelegate *d = delegate())
        d->didStartTapReRecordView(this);
}

void BMSpeedRecordCell::reRecordViewOnTouchUpInside()
{
    endHold(QStringLiteral("reRecordViewOnTouchUpInside"), &BMSpeedRecordDelegate::didFinishTapReRecordView);
}

void BMSpeedRecordCell::reRecordViewOnCancel()
{
    endHold(QStringLiteral("reRecordViewOnCancel"), &BMSpeedRecordDelegate::didCancelTapReRecordView);
}

void BMSpeedRecordCell::endHold(const QString &message, void (BMSpeedRecordDelegate::*tell)(BMSpeedRecordCell *))
{
    log(message);
    if (m_gestureStatus != 1)
        return;
    if (BMSpeedRecordDelegate *d = delegate())
        (d->*tell)(this);
    m_gestureStatus = 0;
}

void BMSpeedRecordCell::textFieldDidBeginEditing()
{
    if (m_editingName)
        return;
    m_editingName = true;
    if (BMSpeedRecordDelegate *d = delegate())
        d->didBeginEditingSpeedRecord(this);
}

void BMSpeedRecordCell::textFieldDidEndEditing()
{
    if (!m_editingName)
        return;
    m_editingName = false;
    m_completer->popup()->hide();
    if (BMSpeedRecordDelegate *d = delegate())
        d->didEndEditingSpeedRecord(this);
}

bool BMSpeedRecordCell::textFieldShouldReturn()
{
    m_lblArea->clearFocus();
    // Without keyboard focus there is no focus-out to report the end.
    textFieldDidEndEditing();
    return true;
}

bool BMSpeedRecordCell::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_reRecordView)
        return handleReRecordEvent(event);
    if (watched == m_completer->popup() && event->type() == QEvent::MouseButtonPress) {
        // A click beside the suggestions closes them (the completer does
        // that) and still reaches what was clicked, Record say: the press is
        // given again to the window under it once the list is gone.
        const auto *mouse = static_cast<QMouseEvent *>(event);
        auto *popup = static_cast<QWidget *>(watched);
        QWidget *under = QApplication::widgetAt(mouse->globalPosition().toPoint());
        if (!popup->rect().contains(mouse->position().toPoint()) && under && under->window()->windowHandle()) {
            QWindow *window = under->window()->windowHandle();
            QCoreApplication::postEvent(window, new QMouseEvent(QEvent::MouseButtonPress,
                                                                window->mapFromGlobal(mouse->globalPosition()),
                                                                mouse->globalPosition(), mouse->button(),
                                                                mouse->buttons(), mouse->modifiers()));
        }
    }
    if (watched == m_completer->popup() && event->type() == QEvent::Resize) {
        auto *popup = static_cast<QWidget *>(watched);
        QPainterPath outline;
        outline.addRoundedRect(QRectF(popup->rect()), kPopupCornerRadius, kPopupCornerRadius);
        popup->setMask(QRegion(outline.toFillPolygon().toPolygon()));
    }
    if (watched == m_lblArea && event->type() == QEvent::FocusIn) {
        // Tab into a name puts the cursor at its end instead of selecting it
        // all, so a stray key cannot wipe the name.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) {
            QFocusEvent plain(QEvent::FocusIn, Qt::OtherFocusReason);
            QCoreApplication::sendEvent(m_lblArea, &plain);
            m_lblArea->end(false);
            return true;
        }
    }
    if (watched == m_lblArea) {
        // The suggestion list taking the focus for a moment is still editing.
        if (event->type() == QEvent::FocusIn
            && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason)
            textFieldDidBeginEditing();
        else if (event->type() == QEvent::FocusOut
                 && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason)
            textFieldDidEndEditing();
    }
    return BMTableViewCell::eventFilter(watched, event);
}

void BMSpeedRecordCell::pressReRecordView()
{
    m_touchOnReRecordView = true;
    const Brightmere::TableView *table = Brightmere::TableView::enclosingTableView(this);
    if (!table || !table->delaysContentTouches()) {
        reRecordViewOnTouchDown();
        return;
    }
    // Held still long enough, the press is the row's; moved past the drag
    // distance sooner, the table takes it (and this press ends unseen).
    QPointer<BMSpeedRecordCell> self(this);
    m_pendingPressClock = &BMSDKBackend::clock();
    m_pendingPressTimer = m_pendingPressClock->startOnce(Brightmere::TableView::kContentTouchDelaySeconds, [self] {
        if (self)
            self->startDelayedPress();
    });
}

void BMSpeedRecordCell::startDelayedPress()
{
    m_pendingPressTimer = 0;
    m_pendingPressClock = nullptr;
    reRecordViewOnTouchDown();
}

void BMSpeedRecordCell::dropPendingPress()
{
    if (m_pendingPressTimer != 0)
        m_pendingPressClock->stopRepeating(m_pendingPressTimer);
    m_pendingPressTimer = 0;
    m_pendingPressClock = nullptr;
}

bool BMSpeedRecordCell::handleReRecordKey(QEvent *event)
{
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_Space || key->modifiers() != Qt::NoModifier)
        return false;
    // The key's own repeats neither end nor restart the hold. No delay as
    // for a finger: a key is no scroll in the making.
    if (key->isAutoRepeat())
        return true;
    if (event->type() == QEvent::KeyPress) {
        // A press right behind a release is a repeat the window system did
        // not mark: the hold goes on.
        if (!m_heldKeyRelease.pressSeen() && !m_keyHold && !m_touchOnReRecordView) {
            m_keyHold = true;
            reRecordViewOnTouchDown();
        }
    } else if (m_keyHold) {
        m_heldKeyRelease.releaseSeen();
    }
    return true;
}

void BMSpeedRecordCell::finishKeyRelease()
{
    m_keyHold = false;
    reRecordViewOnTouchUpInside();
}

bool BMSpeedRecordCell::handleReRecordEvent(QEvent *event)
{
    const bool pending = m_pendingPressTimer != 0;
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)
        return handleReRecordKey(event);
    // Space held while the focus goes (or the row goes) lets go unsaved.
    if (m_keyHold && (event->type() == QEvent::FocusOut || event->type() == QEvent::Hide)) {
        if (!m_heldKeyRelease.settleNow()) {
            m_keyHold = false;
            reRecordViewOnCancel();
        }
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
            return false;
        if (!m_touchOnReRecordView)
            pressReRecordView();
        return true;
    case QEvent::MouseMove: {
        if (!m_touchOnReRecordView)
            return false;
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (!m_reRecordView->rect().contains(mouse->position().toPoint())) {
            m_touchOnReRecordView = false;
            if (pending)
                dropPendingPress();
            else
                reRecordViewOnCancel();
        }
        return true;
    }
    case QEvent::MouseButtonRelease: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (!m_touchOnReRecordView || mouse->button() != Qt::LeftButton)
            return false;
        m_touchOnReRecordView = false;
        const bool inside = m_reRecordView->rect().contains(mouse->position().toPoint());
        if (pending) {
            // Released before the delay: a quick tap, down and up at once;
            // released away (the table took the drag), nothing at all.
            dropPendingPress();
            if (!inside)
                return true;
            reRecordViewOnTouchDown();
        }
        if (inside)
            reRecordViewOnTouchUpInside();
        else
            reRecordViewOnCancel();
        return true;
    }
    case QEvent::Hide:
        if (m_touchOnReRecordView) {
            m_touchOnReRecordView = false;
            if (pending)
                dropPendingPress();
            else
                reRecordViewOnCancel();
        }
        return false;
    default:
        return false;
    }
}
