// Figures of the screen framework on a 375 x 667 window, offscreen: a
// screen change posted to one subscriber (every appearance of every screen
// pays it), an option popup built, shown and pressed (what a tap on a spot's
// delete costs before the block runs), and a button restyled. Median of
// many rounds, one JSON line per figure.
#include <Brightmere/platform/views/KeyWindow.h>
#include <Brightmere/popups/FZConfirmSpotModificationPopup.h>
#include <Brightmere/ui/BMMainButton.h>
#include <Brightmere/ui/BMScreenChangeNotification.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QPushButton>
#include <QTextStream>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

int g_sink = 0;

void measure(const char *name, int rounds, const std::function<void()> &work)
{
    work(); // the first run pays for fonts and style sheets
    std::vector<double> times;
    times.reserve(rounds);
    QElapsedTimer timer;
    for (int i = 0; i < rounds; ++i) {
        timer.start();
        work();
        times.push_back(double(timer.nsecsElapsed()) / 1000.0);
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    QTextStream(stdout) << QStringLiteral(R"({"bench":"%1","rounds":%2,"median_us":%3})")
                               .arg(QLatin1String(name))
                               .arg(rounds)
                               .arg(times[rounds / 2], 0, 'f', 2)
                        << '\n';
}

class Counter : public BMScreenChangeSubscriber
{
public:
    void notifyScreenChange(BMScreenChangeNotification *notification) override
    {
        g_sink += int(notification->screenName().size());
    }
};

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("brightmere.*=false"));

    Counter counter;
    BMScreenChangeNotification::subscribe(&counter);
    const BMGAScreenClass screen(QStringLiteral("WiFiSpeedScanScreen"), &QWidget::staticMetaObject);
    measure("screen_change_post", 20001, [&] { BMScreenChangeNotification::postScreenChange(screen); });
    BMScreenChangeNotification::unsubscribe(&counter);

    QWidget window;
    window.resize(375, 667);
    window.show();
    Brightmere::KeyWindow::makeKeyWindow(&window);
    const QStringList options{QStringLiteral("Spot 3"), QStringLiteral("Always delete without asking"),
                              QStringLiteral("Cancel"), QStringLiteral("Delete")};
    measure("confirm_popup_build_show_press", 501, [&] {
        auto *popup = FZConfirmSpotModificationPopup::popupWithOptions(options, 1);
        popup->setOptionChosenBlock([](int index) { g_sink += index; });
        popup->show();
        popup->optionButtons().last()->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });

    BMMainButton button(QStringLiteral("Start"));
    uint style = 0;
    measure("main_button_set_style", 20001, [&] { button.setStyle(style++ % 6); });
    return g_sink == -1 ? 1 : 0;
}
