#pragma once

#include <Brightmere/platform/views/FocusReturn.h>

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>

class QHBoxLayout;
class QPushButton;
class QVariantAnimation;
class QVBoxLayout;

// The kit's one modal chooser: a dimmed layer over the whole key window with
// a small rounded card in the middle. Entry 0 of the options is the card's
// title; the others are buttons, numbered by their place in the options.
// Pressing a button takes the popup off the screen and then calls
// optionChosenBlock with that number. Subclasses put one extra row under the
// title (entry 1), so their first button is number 2.
//
// Use: make it with popupWithOptions(), set optionChosenBlock, show(). The
// key window owns the popup from then on; it deletes itself once a button
// is pressed or dismiss() is called. Main thread only.
//
// While it is up the popup holds the keyboard: nothing under it gets a key.
// Tab and Shift+Tab move a visible focus ring among its buttons (and its
// field or switch), Space or Enter presses the focused button, Escape and a
// click on the dimmed layer outside the card are a dismissal, and Enter in a
// popup with a text field chooses its confirming option. The focus goes back
// where it was when the popup leaves.
class FZOptionsPopup : public QWidget
{
    Q_OBJECT

public:
    using OptionChosenBlock = std::function<void(int index)>;
    using DismissBlock = std::function<void()>;
    // Places a view in the card; see optionsMakeConstraintsBlockWithOrientation.
    using MakeConstraintsBlock = std::function<void(QWidget *view, QWidget *previousView, QWidget *previousOptionView)>;

    enum Orientation { Vertical = 0, Horizontal = 1 };

    // In points (Brightmere::View::pixelsForPoints). The card keeps its
    // width on every window wide enough for it, widening only for buttons
    // whose texts would otherwise be cut, up to kCardMaximumWidth, and never
    // closer than kWindowMargin to the window's sides.
    static constexpr int kCardWidth = 230;
    static constexpr int kCardMaximumWidth = 360;
    static constexpr int kWindowMargin = 16;
    static constexpr int kOptionHeight = 43;
    static constexpr int kTitleExtraHeight = 20;
    static constexpr int kCornerRadius = 10;
    // The property that holds a view's number in the options; 0 for views
    // that are not buttons.
    static constexpr const char *kTagProperty = "tag";

    explicit FZOptionsPopup(QWidget *parent = nullptr);
    ~FZOptionsPopup() override;

    // Built whole, not shown yet. An orientation other than 0 or 1 is logged
    // and taken as vertical.
    static FZOptionsPopup *popupWithOptions(const QStringList &options, int orientation = Vertical);

    OptionChosenBlock optionChosenBlock() const { return m_optionChosenBlock; }
    void setOptionChosenBlock(OptionChosenBlock block) { m_optionChosenBlock = std::move(block); }
    // Kept for the caller; the popup never calls it.
    DismissBlock onDismissBlock() const { return m_onDismissBlock; }
    void setOnDismissBlock(DismissBlock block) { m_onDismissBlock = std::move(block); }

    int orientation() const { return m_orientation; }
    // How far the card's centre sits below the popup's centre (negative: above).
    qreal centerVerticalConstraint() const { return m_centerVerticalConstraint; }
    // The card slides there over the given seconds, or jumps when 0.
    void setCenterVerticalConstraint(qreal offset, double animationSeconds = 0.0);
    QWidget *popupContainerView() const { return m_card; }

    // Adds the popup to the key window, covering it edge to edge. Without a
    // key window it is logged and the popup deletes itself.
    virtual void show();
    // Takes the popup off the screen without calling any block; dismissed()
    // tells whoever needs to know (Escape and a click outside come here).
    virtual void dismiss();
    // What every button does on release: a sender whose tag is 0 changes
    // nothing; otherwise the popup leaves the screen and then the block gets
    // the tag.
    virtual void optionPressed(QObject *sender);

    // The buttons and separators, in card order.
    QList<QPushButton *> optionButtons() const;
    QList<QWidget *> separators() const;

    static int tagOf(const QObject *view);

Q_SIGNALS:
    // Left the screen unanswered, through dismiss().
    void dismissed();

protected:
    // Makes a T and builds its card; prepare runs in between, for settings
    // the building reads.
    template<typename T>
    static T *build(const QStringList &options, int orientation, const std::function<void(T *)> &prepare = {})
    {
        auto *popup = new T;
        if (prepare)
            prepare(popup);
        static_cast<FZOptionsPopup *>(popup)->initWithPopupOptions(options, orientation);
        return popup;
    }

    virtual void initWithPopupOptions(const QStringList &options, int orientation);
    // Vertical: every view goes under the one before, full width. Horizontal:
    // the buttons and separators share one row under viewOnTopOfOptions().
    virtual MakeConstraintsBlock optionsMakeConstraintsBlockWithOrientation(int orientation);
    // Whether the view just added to the card is its first button.
    virtual bool isFirstOptionView(QWidget *view) const;
    // The row the buttons of a horizontal card sit under.
    virtual QWidget *viewOnTopOfOptions(QWidget *parentView) const;
    virtual int firstOptionViewIndex() const { return 1; }
    // The option Enter chooses when no button has the focus; 0 for none.
    virtual int confirmingOptionIndex() const { return 0; }
    virtual void addSubviewsWithOptions(const QStringList &options, QWidget *parentView, int orientation);
    // Makes the view of one entry, adds it to parentView and places it.
    virtual QWidget *addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                                       QWidget *previousView, QWidget *previousOptionView);

    // A full-width row stacked under the rows before it; its height is its
    // own (fixed, or its layout's for the card's width).
    void stackRow(QWidget *view);
    // The card's width for the popup's width, and its place: centred, moved
    // by the vertical offset. The layouts place everything else.
    void placeCard();

    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void leaveScreen();
    QList<QWidget *> focusableViews() const;
    void roundOuterCorners();
    int cardWidthForPopupWidth(int popupWidth) const;
    QWidget *makeSeparator(QWidget *parentView);

    OptionChosenBlock m_optionChosenBlock;
    DismissBlock m_onDismissBlock;
    int m_orientation = Vertical;
    qreal m_centerVerticalConstraint = 0.0;
    qreal m_shownOffset = 0.0; // differs from the constraint while the card slides
    QWidget *m_card = nullptr;
    // Around the card: margins that centre it and carry the offset.
    QVBoxLayout *m_placement = nullptr;
    // The card's rows, top to bottom; the buttons of a horizontal card
    // share m_optionRow.
    QVBoxLayout *m_column = nullptr;
    QHBoxLayout *m_optionRow = nullptr;
    MakeConstraintsBlock m_makeConstraints;
    QList<QPointer<QPushButton>> m_buttons;
    QList<QPointer<QWidget>> m_separators;
    QPointer<QWidget> m_window;
    Brightmere::FocusReturn m_focusReturn;
    bool m_backdropPressed = false;
    QVariantAnimation *m_slide = nullptr;
};
