#include "FZSpotNamesSettingsViewController.h"

#include "FZShareController.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/model/BMSDKUISettings.h>
#include <Brightmere/platform/foundation/NotificationCenter.h>
#include <Brightmere/platform/views/FocusRingOverlay.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/NavigationItem.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereImage.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QTextCursor>

#include <algorithm>

using namespace Brightmere;
using Brightmere::View::pixelsForPoints;

namespace {

const QString kModule = QStringLiteral("FZSpotNamesSettingsViewController");

// In points.
constexpr int kPageMargin = 16;
constexpr int kButtonPadding = 8;
constexpr qreal kTextPoints = 17;
constexpr int kTextPadding = 10;
constexpr int kActionRowHeight = 44;
constexpr int kIconSize = 22;
// On a wide window the names and their actions keep this width, centred.
constexpr int kReadableWidth = 600;
// Up to kReadableWidth, the column takes all the width and the sides none.
constexpr int kColumnStretch = 10000;
// Icons are drawn this many times larger than shown, so they stay crisp on
// dense screens.
constexpr int kIconScale = 3;

// The lines of the part that hold more than white space, each as typed and
// each ending with a line break.
QString keptLines(const QString &part)
{
    QString kept;
    const QStringList lines = part.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (!line.trimmed().isEmpty())
            kept += line + QLatin1Char('\n');
    }
    return kept;
}

// One of the kit's images in a colour of the table: the images are drawn in
// a single colour that only their shape matters for.
QIcon tintedImage(const QString &name, const QColor &color)
{
    const QIcon source = Brightmere::Image::named(name);
    if (source.isNull())
        return {};
    const int side = pixelsForPoints(kIconSize);
    QPixmap pixmap = source.pixmap(QSize(side, side) * kIconScale);
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    pixmap.setDevicePixelRatio(kIconScale);
    return QIcon(pixmap);
}

// The table's medium blue, darkened to read on the white page.
QColor actionColor()
{
    return Color::withContrast(Color::named(QStringLiteral("medium_blue")), Color::system(2), Color::kTextContrast);
}

QToolButton *actionButton(const QString &objectName, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setObjectName(objectName);
    // Reached with Tab; a click leaves the focus in the text being edited.
    button->setFocusPolicy(Qt::TabFocus);
    new Brightmere::FocusRingOverlay(button);
    button->setIconSize(QSize(pixelsForPoints(kIconSize), pixelsForPoints(kIconSize)));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setMinimumHeight(pixelsForPoints(kActionRowHeight));
    QColor tint = actionColor();
    QColor pressed = tint;
    pressed.setAlphaF(0.4f);
    button->setStyleSheet(QStringLiteral("QToolButton { border: none; background: transparent; color: %1;"
                                         " padding: 0px %3px; }"
                                         "QToolButton:pressed { color: %2; }")
                              .arg(tint.name(QColor::HexArgb), pressed.name(QColor::HexArgb))
                              .arg(pixelsForPoints(kButtonPadding)));
    button->setFont(View::fontOfSize(kTextPoints));
    return button;
}

} // namespace

FZSpotNamesSettingsViewController::FZSpotNamesSettingsViewController(QWidget *parent)
    : BMSDKUIBaseViewController(parent)
{
    buildView();
}

FZSpotNamesSettingsViewController::~FZSpotNamesSettingsViewController()
{
    NotificationCenter::defaultCenter().removeObserver(this);
}

void FZSpotNamesSettingsViewController::buildView()
{
    Brightmere::View::setBackgroundColor(this, Color::system(2));

    // One column: on a phone the whole width, on a wide window a readable
    // width in the middle.
    auto *column = new QWidget(this);
    column->setObjectName(QStringLiteral("spotNamesColumn"));
    column->setMaximumWidth(pixelsForPoints(kReadableWidth));

    // The two actions under the bar: with a back button and the title, the
    // bar has no room left for two labelled buttons on a phone.
    auto *actionRow = new QWidget(column);
    actionRow->setObjectName(QStringLiteral("actionRow"));
    m_leftButton = actionButton(QStringLiteral("leftButton"), actionRow);
    m_rightButton = actionButton(QStringLiteral("rightButton"), actionRow);
    connect(m_leftButton, &QToolButton::clicked, this, [this] { leftButtonAction(m_leftButton); });
    connect(m_rightButton, &QToolButton::clicked, this, [this] { rightButtonAction(m_rightButton); });
    auto *actions = new QHBoxLayout(actionRow);
    const int actionsSide = pixelsForPoints(kPageMargin - kButtonPadding);
    actions->setContentsMargins(actionsSide, 0, actionsSide, 0);
    actions->addWidget(m_leftButton);
    actions->addStretch(1);
    actions->addWidget(m_rightButton);
    auto *hairline = new QWidget(column);
    hairline->setFixedHeight(pixelsForPoints(1));
    Brightmere::View::setBackgroundColor(hairline, Color::system(3));

    m_spotNamesTextView = new QPlainTextEdit(column);
    m_spotNamesTextView->setObjectName(QStringLiteral("spotNamesTextView"));
    m_spotNamesTextView->setFrameShape(QFrame::NoFrame);
    m_spotNamesTextView->setTabChangesFocus(true);
    m_spotNamesTextView->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_spotNamesTextView->document()->setDocumentMargin(pixelsForPoints(kTextPadding));
    m_spotNamesTextView->setFont(View::fontOfSize(kTextPoints));
    m_spotNamesTextView->installEventFilter(this);

    const QColor tint = actionColor();
    m_editIcon = tintedImage(QStringLiteral("iconEdit"), tint);
    m_shareIcon = tintedImage(QStringLiteral("iconShare"), tint);

    auto *rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(actionRow);
    rows->addWidget(hairline);
    m_textLayout = new QVBoxLayout;
    m_textLayout->addWidget(m_spotNamesTextView);
    rows->addLayout(m_textLayout, 1);
    auto *page = new QHBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addStretch(1);
    page->addWidget(column, kColumnStretch);
    page->addStretch(1);
    setContentInset(QMargins());
}

BMGAScreenClass FZSpotNamesSettingsViewController::screenNameAndClassForEventTracker() const
{
    return BMGAScreenClass(QStringLiteral("Spots Names Screen"), metaObject());
}

void FZSpotNamesSettingsViewController::viewDidLoad()
{
    BMSDKUIBaseViewController::viewDidLoad();
    m_originalString = spotNamesAsString();
    m_spotNamesTextView->setPlainText(m_originalString);
    // Readable on the grey of editing too, where high contrast asks for it.
    Brightmere::View::followContrast(m_spotNamesTextView, [view = m_spotNamesTextView] {
        QPalette palette = view->palette();
        palette.setColor(QPalette::Text, Color::fixedColor(Color::colorFromHex(QStringLiteral("999999")), Color::system(3)));
        view->setPalette(palette);
    });

    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, QString::fromLatin1(KeyboardNotifications::kKeyboardDidShowNotification),
                       [this](const Notification &notification) { keyboardWillShow(notification); });
    center.addObserver(this, QString::fromLatin1(KeyboardNotifications::kKeyboardWillHideNotification),
                       [this](const Notification &notification) { keyboardWillHide(notification); });
    updateUI();
}

void FZSpotNamesSettingsViewController::refreshUITexts()
{
    using Brightmere::View::literalButtonText;
    setTitle(BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_spot_names")));
    m_spotNamesTextView->setAccessibleName(title());
    if (m_editing) {
        m_leftButton->setText(literalButtonText(BMI18NManager::stringForCode(QStringLiteral("cancel"))));
        m_rightButton->setText(
            literalButtonText(BMI18NManager::stringForCode(QStringLiteral("fairzones_spot_names_settings_save"))));
    } else {
        m_leftButton->setText(
            literalButtonText(BMI18NManager::stringForCode(QStringLiteral("fairzones_spot_names_settings_edit"))));
        m_rightButton->setText(
            literalButtonText(BMI18NManager::stringForCode(QStringLiteral("fairzones_spot_names_settings_share"))));
    }
}

QString FZSpotNamesSettingsViewController::spotNamesAsString()
{
    return BMSDKUISettings::sharedInstance().savedSpots().join(QLatin1Char('\n'));
}

QStringList FZSpotNamesSettingsViewController::spotNamesAsArray() const
{
    return m_spotNamesTextView->toPlainText().split(QLatin1Char('\n'));
}

void FZSpotNamesSettingsViewController::updateUI()
{
    refreshUITexts();
    m_spotNamesTextView->setReadOnly(!m_editing);
    if (m_editing) {
        m_spotNamesTextView->setFocus(Qt::OtherFocusReason);
        m_stringBeforeEdit = m_spotNamesTextView->toPlainText();
        setTextViewBackground(Color::system(3));
    } else {
        // Left without saving: the text goes back to what it was at Edit.
        if (m_stringBeforeEdit) {
            m_spotNamesTextView->setPlainText(*m_stringBeforeEdit);
            m_stringBeforeEdit.reset();
        }
        m_spotNamesTextView->clearFocus();
        setTextViewBackground(Color::colorWithR(0, 0, 0, 0.0f));
    }
    m_leftButton->setIcon(m_editing ? QIcon() : m_editIcon);
    m_rightButton->setIcon(m_editing ? QIcon() : m_shareIcon);
    QFont saveFont = m_rightButton->font();
    saveFont.setBold(m_editing);
    m_rightButton->setFont(saveFont);
    // Leaving mid-edit goes through Cancel or Save, never silently by back.
    navigationItem()->setHidesBackButton(m_editing);
}

void FZSpotNamesSettingsViewController::setTextViewBackground(const QColor &color)
{
    QPalette palette = m_spotNamesTextView->palette();
    palette.setColor(QPalette::Base, color);
    m_spotNamesTextView->setPalette(palette);
    m_spotNamesTextView->viewport()->setAutoFillBackground(color.alpha() > 0);
}

void FZSpotNamesSettingsViewController::toggleEditing()
{
    m_editing = !m_editing;
    updateUI();
}

void FZSpotNamesSettingsViewController::leftButtonAction(QObject *sender)
{
    Q_UNUSED(sender)
    toggleEditing();
}

void FZSpotNamesSettingsViewController::rightButtonAction(QObject *sender)
{
    Q_UNUSED(sender)
    if (!m_editing) {
        shareViaEmail();
        return;
    }
    // Against the opening text, not the last saved one.
    if (m_spotNamesTextView->toPlainText() != m_originalString) {
        BMSDKUISettings::sharedInstance().setSavedSpots(spotNamesAsArray());
        m_spotNamesTextView->setPlainText(spotNamesAsString());
        m_stringBeforeEdit.reset();
    }
    toggleEditing();
}

void FZSpotNamesSettingsViewController::setMailAvailability(MailAvailability availability)
{
    m_mailAvailability = std::move(availability);
}

void FZSpotNamesSettingsViewController::shareViaEmail()
{
    const bool canSend = m_mailAvailability ? m_mailAvailability() : MailComposer::canSendMail();
    if (!canSend) {
        // Never silent: say so, and offer the clipboard or a file instead.
        BMLogger::sharedInstance().logFromModule(kModule, 1, "no mail program: offering to copy or save the spot names");
        auto *share = new FZShareController(this);
        share->setBody(m_spotNamesTextView->toPlainText());
        share->setFileName(BMI18NManager::stringForCode(QStringLiteral("fairzones_settings_spot_names")));
        connect(share, &FZShareController::finished, share, &QObject::deleteLater);
        share->offerAlternatives(this);
        return;
    }
    auto *composer = new MailComposer(this);
    composer->setMessageBody(m_spotNamesTextView->toPlainText());
    connect(composer, &MailComposer::finished, this,
            [this, composer](MailComposer::Result result) { mailComposeControllerDidFinishWithResult(composer, result); });
    m_mailComposer = composer;
    composer->present();
}

void FZSpotNamesSettingsViewController::mailComposeControllerDidFinishWithResult(MailComposer *controller,
                                                                                 MailComposer::Result result)
{
    Q_UNUSED(result)
    if (!controller)
        return;
    // Whatever the outcome, the composer goes; the mail program reports its own failures.
    if (m_mailComposer == controller)
        m_mailComposer.clear();
    controller->deleteLater();
}

void FZSpotNamesSettingsViewController::keyboardWillShow(const Notification &notification)
{
    setContentInset(QMargins(0, 0, 0, KeyboardNotifications::endFrame(notification).height()));
}

void FZSpotNamesSettingsViewController::keyboardWillHide(const Notification &notification)
{
    Q_UNUSED(notification)
    setContentInset(QMargins());
}

void FZSpotNamesSettingsViewController::setContentInset(const QMargins &inset)
{
    // The text and its scroll bar end where the keyboard begins, so the last
    // lines scroll up from behind it.
    m_contentInset = inset;
    const int margin = pixelsForPoints(kPageMargin);
    m_textLayout->setContentsMargins(QMargins(margin, margin, margin, 0) + inset);
}

bool FZSpotNamesSettingsViewController::isEditIconShown() const
{
    return !m_leftButton->icon().isNull();
}

bool FZSpotNamesSettingsViewController::isShareIconShown() const
{
    return !m_rightButton->icon().isNull();
}

FZSpotNamesSettingsViewController::ReturnResult FZSpotNamesSettingsViewController::textAfterReturn(const QString &text,
                                                                                                   int position)
{
    const int at = std::clamp(position, 0, int(text.size()));
    ReturnResult result;
    result.text = keptLines(text.left(at));
    result.cursorPosition = int(result.text.size());
    result.text += QLatin1Char('\n');
    result.text += keptLines(text.mid(at));
    return result;
}

bool FZSpotNamesSettingsViewController::textViewShouldChangeTextInRange(QPlainTextEdit *textView, int location,
                                                                        int length, const QString &replacementText)
{
    Q_UNUSED(length) // the part after starts where the range starts
    if (replacementText != QLatin1String("\n"))
        return true;
    if (!textView) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "Return reported without a text view; left as typed");
        return true;
    }
    const QString text = textView->toPlainText();
    if (location < 0 || location > text.size())
        BMLogger::sharedInstance().logFromModule(kModule, 2, "Return at %d outside a text of %d characters",
                                                 location, int(text.size()));
    const ReturnResult result = textAfterReturn(text, location);
    // One undo step for the whole rewrite.
    QTextCursor cursor(textView->document());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.insertText(result.text);
    cursor.endEditBlock();
    cursor.setPosition(result.cursorPosition);
    textView->setTextCursor(cursor);
    textView->ensureCursorVisible();
    return false;
}

bool FZSpotNamesSettingsViewController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_spotNamesTextView && event->type() == QEvent::KeyPress && !m_spotNamesTextView->isReadOnly()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            const QTextCursor cursor = m_spotNamesTextView->textCursor();
            const int start = cursor.selectionStart();
            if (!textViewShouldChangeTextInRange(m_spotNamesTextView, start, cursor.selectionEnd() - start,
                                                 QStringLiteral("\n")))
                return true;
        }
    }
    return BMSDKUIBaseViewController::eventFilter(watched, event);
}
