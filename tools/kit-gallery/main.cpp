// brightmere-kit-gallery [--output <folder>]
//
// Draws each of the kit's shared controls, a screen with the kit's title
// view and back button, the loading overlays, the alert builders and every
// option popup in both orientations on a 375 x 667 window, and saves each
// as a PNG in the folder (default: kit-gallery). Runs without a display
// (QT_QPA_PLATFORM=offscreen). Exits 1 when a picture could not be made.
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/KeyboardNotifications.h>
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/platform/views/NavigationBar.h>
#include <Brightmere/platform/views/NavigationController.h>
#include <Brightmere/platform/views/Switch.h>
#include <Brightmere/popups/FZConfirmSpotModificationPopup.h>
#include <Brightmere/popups/FZLabelOptionsPopup.h>
#include <Brightmere/popups/FZTextViewOptionsPopup.h>
#include <Brightmere/ui/BMAnnotation.h>
#include <Brightmere/ui/BMBorderedView.h>
#include <Brightmere/ui/BMLabel.h>
#include <Brightmere/ui/BMLoadingView.h>
#include <Brightmere/ui/BMMainButton.h>
#include <Brightmere/ui/BMSDKUIAlertView.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>
#include <Brightmere/ui/BMTableViewCell.h>
#include <Brightmere/ui/BrightmereColor.h>

#include <QApplication>
#include <QBoxLayout>
#include <QCommandLineParser>
#include <QDir>
#include <QGridLayout>
#include <QLineEdit>
#include <QEventLoop>
#include <QTextStream>
#include <QTimer>

#include <memory>

namespace {

constexpr QSize kPhone(375, 667);

QString tr18(const char *key)
{
    return BMI18NManager::stringForCode(QString::fromLatin1(key));
}

class Gallery
{
public:
    explicit Gallery(const QString &folder) : m_folder(folder) {}

    // A fresh phone-sized window that overlays and popups go into.
    std::unique_ptr<QWidget> phone(const QColor &background = Brightmere::Color::system(4))
    {
        auto window = std::make_unique<QWidget>();
        window->setFixedSize(kPhone);
        window->setAutoFillBackground(true);
        QPalette palette = window->palette();
        palette.setColor(QPalette::Window, background);
        window->setPalette(palette);
        return window;
    }

    void save(QWidget *window, const QString &name)
    {
        window->show();
        Brightmere::KeyWindow::makeKeyWindow(window);
        settle();
        const QString path = QDir(m_folder).filePath(name + QStringLiteral(".png"));
        const bool saved = window->grab().save(path);
        QTextStream(stdout) << (saved ? "saved " : "FAILED ") << path << '\n';
        m_failures += saved ? 0 : 1;
    }

    static void settle()
    {
        // Queued work (overlays, alerts) and the layout it causes.
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
    }

    int failures() const { return m_failures; }

private:
    QString m_folder;
    int m_failures = 0;
};

BMLabel *heading(const QString &text, QWidget *parent)
{
    auto *label = new BMLabel(parent);
    QFont font = label->font();
    font.setPixelSize(13);
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    label->baseInit();
    label->setText(text);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Brightmere::Color::named(QStringLiteral("medium_gray")));
    label->setPalette(palette);
    return label;
}

void buttons(Gallery &gallery)
{
    auto window = gallery.phone();
    auto *grid = new QGridLayout(window.get());
    grid->setContentsMargins(16, 20, 16, 20);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(10);
    grid->addWidget(heading(QStringLiteral("Normal"), window.get()), 0, 0);
    grid->addWidget(heading(QStringLiteral("Highlighted"), window.get()), 0, 1);
    const QStringList titles{tr18("start"), tr18("stop"), tr18("record"), tr18("fairzones_delete_confirm"),
                             tr18("reset"), tr18("fairzones_replace_confirm")};
    for (uint style = 0; style <= 5; ++style) {
        for (int column = 0; column < 2; ++column) {
            auto *button = new BMMainButton(QStringLiteral("%1 · %2").arg(style).arg(titles.at(int(style))),
                                            window.get());
            button->setStyle(style);
            if (column == 1)
                button->setHighlighted(true);
            grid->addWidget(button, int(style) + 1, column);
        }
    }
    grid->setRowStretch(7, 1);
    gallery.save(window.get(), QStringLiteral("controls-buttons"));
}

class GalleryRow : public BMTableViewCell
{
public:
    explicit GalleryRow(QWidget *parent = nullptr) : BMTableViewCell(parent)
    {
        setAutoFillBackground(true);
        QPalette palette = this->palette();
        palette.setColor(QPalette::Window, Brightmere::Color::system(2));
        setPalette(palette);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(16, 8, 16, 8);
        auto *name = new BMLabel(tr18("fairzones_historical_result_saved_spot") + QStringLiteral(" 1"), this);
        auto *speed = new BMLabel(QStringLiteral("48.7 ") + tr18("bmMbps"), this);
        QFont bold = speed->font();
        bold.setWeight(QFont::Bold);
        speed->setFont(bold);
        speed->baseInit();
        layout->addWidget(name, 1);
        layout->addWidget(speed);
        setFixedHeight(56);
    }
};

void otherControls(Gallery &gallery)
{
    auto window = gallery.phone();
    auto *column = new QVBoxLayout(window.get());
    column->setContentsMargins(16, 20, 16, 20);
    column->setSpacing(10);

    column->addWidget(heading(QStringLiteral("BMLabel, regular, semibold, bold, light"), window.get()));
    for (QFont::Weight weight : {QFont::Normal, QFont::DemiBold, QFont::Bold, QFont::Light}) {
        auto *label = new BMLabel(window.get());
        QFont font = label->font();
        font.setPixelSize(17);
        font.setWeight(weight);
        label->setFont(font);
        label->baseInit();
        label->setText(tr18("fairzones_title"));
        column->addWidget(label);
    }

    column->addWidget(heading(QStringLiteral("BMBorderedView"), window.get()));
    auto *bordered = BMBorderedView::initFromNib(window.get());
    bordered->setFixedHeight(64);
    auto *inside = new QVBoxLayout(bordered);
    inside->setContentsMargins(12, 8, 12, 8);
    inside->addWidget(new BMLabel(tr18("fairzones_hold_to_average"), bordered));
    column->addWidget(bordered);

    column->addWidget(heading(QStringLiteral("BMTableViewCell"), window.get()));
    column->addWidget(BMTableViewCell::cell<GalleryRow>(window.get()));

    column->addWidget(heading(QStringLiteral("BMAnnotation"), window.get()));
    const BMAnnotation annotation(tr18("fairzones_historical_results_title"), {40.4168, -3.7038}, 7);
    auto *pin = new BMBorderedView(window.get());
    pin->setFixedHeight(56);
    auto *pinLayout = new QVBoxLayout(pin);
    pinLayout->setContentsMargins(12, 6, 12, 6);
    pinLayout->addWidget(new BMLabel(annotation.title(), pin));
    pinLayout->addWidget(new BMLabel(QStringLiteral("%1, %2")
                                         .arg(annotation.coordinate().latitude, 0, 'f', 4)
                                         .arg(annotation.coordinate().longitude, 0, 'f', 4),
                                     pin));
    column->addWidget(pin);
    column->addStretch(1);
    gallery.save(window.get(), QStringLiteral("controls-other"));
}

class GalleryScreen : public BMSDKUIBaseViewController
{
public:
    explicit GalleryScreen(bool decorated) : m_decorated(decorated)
    {
        setAutoFillBackground(true);
        QPalette palette = this->palette();
        palette.setColor(QPalette::Window, Brightmere::Color::system(2));
        setPalette(palette);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(24, 24, 24, 24);
        m_body = new BMLabel(this);
        QFont font = m_body->font();
        font.setPixelSize(15);
        m_body->setFont(font);
        m_body->baseInit();
        m_body->setWordWrap(true);
        layout->addWidget(m_body);
        layout->addStretch(1);
        m_start = new BMMainButton(this);
        m_start->setStyle(0);
        m_start->setFixedHeight(50);
        layout->addWidget(m_start);
    }

    void refreshUITexts() override
    {
        m_body->setText(tr18("fairzones_tutorial_1"));
        m_start->setText(tr18("start"));
    }

protected:
    void viewDidLoad() override
    {
        BMSDKUIBaseViewController::viewDidLoad();
        if (m_decorated) {
            prepareHeaderViewForTitle(tr18("fairzones_title"));
            replaceNativeBackButton();
        }
    }

private:
    bool m_decorated;
    BMLabel *m_body = nullptr;
    BMMainButton *m_start = nullptr;
};

std::unique_ptr<Brightmere::NavigationController> screenStack()
{
    auto *root = new GalleryScreen(false);
    root->setTitle(tr18("fairzones_historical_results_title"));
    auto navigation = std::make_unique<Brightmere::NavigationController>(root);
    navigation->setFixedSize(kPhone);
    navigation->navigationBar()->setBackgroundColor(Brightmere::Color::named(QStringLiteral("dark_blue")));
    navigation->pushViewController(new GalleryScreen(true), false);
    return navigation;
}

void screens(Gallery &gallery)
{
    auto navigation = screenStack();
    gallery.save(navigation.get(), QStringLiteral("screen-title-and-back"));

    auto transparent = screenStack();
    auto *top = static_cast<BMSDKUIBaseViewController *>(transparent->topViewController());
    QPalette palette = top->palette();
    palette.setColor(QPalette::Window, Brightmere::Color::named(QStringLiteral("medium_blue")));
    top->setPalette(palette);
    top->setNavigationBarTransparent();
    gallery.save(transparent.get(), QStringLiteral("screen-transparent-bar"));

    for (bool circle : {false, true}) {
        auto stack = screenStack();
        stack->show();
        Brightmere::KeyWindow::makeKeyWindow(stack.get());
        if (circle)
            BMLoadingView::sharedInstance().showCircle();
        else
            BMLoadingView::sharedInstance().show();
        gallery.save(stack.get(), circle ? QStringLiteral("loading-circle") : QStringLiteral("loading-plain"));
        BMLoadingView::sharedInstance().hide();
        Gallery::settle();
    }
}

void alerts(Gallery &gallery)
{
    struct Shot
    {
        QString name;
        std::function<Brightmere::Alert *()> build;
    };
    const QList<Shot> shots{
        {QStringLiteral("alert-on-cancel"),
         [] {
             return BMSDKUIAlertView::alertControllerWithTitleOnCancel(tr18("bmOops"), tr18("connection_error_message"),
                                                                       [] {});
         }},
        {QStringLiteral("alert-on-ok"),
         [] {
             return BMSDKUIAlertView::alertControllerWithTitleOnOK(
                 tr18("fairzones_historical_result_save_title_nil_title"),
                 tr18("fairzones_historical_result_save_title_nil_message"), {});
         }},
        {QStringLiteral("alert-actions"),
         [] {
             using Brightmere::AlertAction;
             return BMSDKUIAlertView::alertControllerWithTitle(
                 tr18("fairzones_replace_confirm"), tr18("fairzones_delete_record_can_be_cleared_in_settings"),
                 {AlertAction(tr18("fairzones_replace_confirm"), AlertAction::Style::Default),
                  AlertAction(tr18("fairzones_replace_copy"), AlertAction::Style::Default),
                  AlertAction(tr18("cancel"), AlertAction::Style::Default)});
         }},
        {QStringLiteral("alert-timed"),
         [] { return BMSDKUIAlertView::alertControllerWithTitle(tr18("preparing"), QString(), {}); }},
    };
    for (const Shot &shot : shots) {
        auto stack = screenStack();
        stack->show();
        Gallery::settle();
        stack->topViewController()->presentAlert(shot.build(), false);
        gallery.save(stack.get(), shot.name);
    }
}

void popups(Gallery &gallery)
{
    const QString spot = tr18("fairzones_historical_result_saved_spot") + QStringLiteral(" 3");
    for (int orientation : {0, 1}) {
        const QString suffix = orientation == 0 ? QStringLiteral("-vertical") : QStringLiteral("-horizontal");
        {
            auto window = screenStack();
            window->show();
            Brightmere::KeyWindow::makeKeyWindow(window.get());
            FZOptionsPopup::popupWithOptions({spot, tr18("fairzones_replace_confirm"), tr18("fairzones_replace_copy"),
                                              tr18("cancel")},
                                             orientation)
                ->show();
            gallery.save(window.get(), QStringLiteral("popup-options") + suffix);
        }
        {
            auto window = screenStack();
            window->show();
            Brightmere::KeyWindow::makeKeyWindow(window.get());
            FZTextViewOptionsPopup::popupWithOptions(
                {tr18("fairzones_historical_results_save_alert_title"),
                 tr18("fairzones_historical_results_save_alert_message"), tr18("cancel"),
                 tr18("fairzones_historical_results_save_alert_save")},
                [](QLineEdit *field) {
                    field->setPlaceholderText(tr18("fairzones_historical_results_save_alert_title_placeholder"));
                },
                orientation)
                ->show();
            gallery.save(window.get(), QStringLiteral("popup-text") + suffix);
            if (orientation == 1) {
                // A phone keyboard of 260 points rising from the bottom,
                // drawn as a plain panel where the real one would be.
                const QRect keyboard(0, kPhone.height() - 260, kPhone.width(), 260);
                auto *panel = new QWidget(window.get());
                panel->setGeometry(keyboard);
                panel->setAutoFillBackground(true);
                QPalette palette = panel->palette();
                palette.setColor(QPalette::Window, Brightmere::Color::system(3));
                panel->setPalette(palette);
                panel->show();
                panel->raise();
                Brightmere::KeyboardNotifications::postKeyboardDidShow(keyboard);
                // The card slides for 0.2 s.
                QEventLoop wait;
                QTimer::singleShot(300, &wait, &QEventLoop::quit);
                wait.exec();
                gallery.save(window.get(), QStringLiteral("popup-text-keyboard"));
            }
        }
        {
            auto window = screenStack();
            window->show();
            Brightmere::KeyWindow::makeKeyWindow(window.get());
            FZLabelOptionsPopup::popupWithOptions({tr18("fairzones_historical_result_save_title_nil_title"),
                                                   tr18("fairzones_historical_result_save_title_nil_message"),
                                                   tr18("fairzones_historical_result_save_title_nil_ok")},
                                                  orientation)
                ->show();
            gallery.save(window.get(), QStringLiteral("popup-label") + suffix);
        }
        {
            auto window = screenStack();
            window->show();
            Brightmere::KeyWindow::makeKeyWindow(window.get());
            auto *confirm = FZConfirmSpotModificationPopup::popupWithOptions(
                {spot, tr18("fairzones_delete_record_confirm_always"), tr18("cancel"),
                 tr18("fairzones_delete_confirm")},
                orientation);
            confirm->show();
            if (orientation == 1)
                confirm->optionSwitch()->setOn(true);
            gallery.save(window.get(), QStringLiteral("popup-confirm") + suffix);
        }
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Renders the kit's controls and popups to PNG files"));
    parser.addHelpOption();
    const QCommandLineOption output(QStringLiteral("output"), QStringLiteral("Folder for the PNG files."),
                                    QStringLiteral("folder"), QStringLiteral("kit-gallery"));
    parser.addOption(output);
    parser.process(app);

    const QString folder = parser.value(output);
    if (!QDir().mkpath(folder)) {
        QTextStream(stderr) << "cannot make the folder " << folder << '\n';
        return 1;
    }
    Gallery gallery(folder);
    buttons(gallery);
    otherControls(gallery);
    screens(gallery);
    alerts(gallery);
    popups(gallery);
    return gallery.failures() == 0 ? 0 : 1;
}
