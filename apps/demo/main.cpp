// The demo host: how a newcomer runs the kit. It embeds the kit the way a
// customer's application does. With --screenshot it renders its window to a
// PNG and exits, which is how it runs where there is no display.
#include "resources/FrameworkBundle.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLabel>
#include <QMainWindow>
#include <QTextStream>
#include <QTimer>
#include <QVBoxLayout>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("BrightmereDemo"));
    QApplication::setOrganizationName(QStringLiteral("Brightmere"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Demo host of the BrightmereMobileSDKUI kit"));
    parser.addHelpOption();
    QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                  QStringLiteral("Render the window to <file> (PNG) and exit."),
                                  QStringLiteral("file"));
    parser.addOption(screenshot);
    parser.process(app);

    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Brightmere demo"));
    auto *central = new QWidget(&window);
    auto *layout = new QVBoxLayout(central);
    auto *name = new QLabel(QStringLiteral("BrightmereMobileSDKUI"), central);
    QFont font = name->font();
    font.setPointSize(20);
    font.setBold(true);
    name->setFont(font);
    name->setAlignment(Qt::AlignCenter);
    auto *version = new QLabel(QStringLiteral("version %1 (build %2)")
                                   .arg(Brightmere::FrameworkBundle::shortVersion(),
                                        Brightmere::FrameworkBundle::buildVersion()),
                               central);
    version->setAlignment(Qt::AlignCenter);
    layout->addStretch();
    layout->addWidget(name);
    layout->addWidget(version);
    layout->addStretch();
    window.setCentralWidget(central);
    window.resize(390, 844);
    window.show();

    if (parser.isSet(screenshot)) {
        const QString path = parser.value(screenshot);
        QTimer::singleShot(0, &window, [&window, path] {
            const bool saved = window.grab().save(path);
            QTextStream(stdout) << (saved ? "Saved the demo window to " : "Could not save ") << path << '\n';
            QApplication::exit(saved ? 0 : 1);
        });
    }
    return app.exec();
}
