// The shared look: colours, the kit's face, forms by class name, focus, the
// framework's images and the main button.
#include "LogCapture.h"
#include "TestEnvironment.h"
#include "resources/FrameworkBundle.h"
#include "ui/BMMainButton.h"
#include "ui/BrightmereColor.h"
#include "ui/BrightmereView.h"

#include <QApplication>
#include <QDirIterator>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <limits>

using namespace Brightmere;

Q_DECLARE_METATYPE(Brightmere::View::NibFactory)

namespace {

QColor named(const char *key)
{
    return Color::named(QString::fromLatin1(key));
}

} // namespace

// A form registered under its class name.
class NibCard : public QLabel
{
    Q_OBJECT

public:
    explicit NibCard(QWidget *parent = nullptr) : QLabel(QStringLiteral("card"), parent) {}
};

class tst_BrightmereLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        View::unregisterNib(QStringLiteral("NibCard"));
        m_env.reset();
    }

    void namedColours()
    {
        QCOMPARE(named("medium_blue"), QColor(0x35, 0x93, 0xda));
        QCOMPARE(named("dark_blue"), QColor(0x06, 0x6d, 0xa9));
        QCOMPARE(named("norva_red_1"), QColor(0xff, 0x00, 0x00));
        QCOMPARE(named("wifi_health_good"), QColor(0x73, 0xff, 0x73));
        QCOMPARE(named("fz_chart_back"), QColor(Qt::white));
        for (const char *unknown : {"", "FZ_CHART_BACK", "fz_chart_back ", "3593DA"})
            QVERIFY2(!named(unknown).isValid(), unknown);
        // Every key the kit's sources and the demo name is in the table.
        static const QRegularExpression use(QStringLiteral("\\b(?:named|colour|hex)\\(\\s*(?:QStringLiteral\\(\\s*)?\"([a-z0-9_]+)\""));
        int uses = 0;
        for (const char *root : {BRIGHTMERE_SOURCE_DIR "/src", BRIGHTMERE_SOURCE_DIR "/apps"}) {
            for (QDirIterator it(root, {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
                QFile file(it.next());
                QVERIFY(file.open(QIODevice::ReadOnly));
                for (auto match = use.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext(); ++uses) {
                    const QString key = match.next().captured(1);
                    QVERIFY2(Color::named(key).isValid() && Color::namedColorKeys().contains(key),
                             qPrintable(key + " in " + file.fileName()));
                }
            }
        }
        QVERIFY2(uses > 30, qPrintable(QString::number(uses)));
    }

    void hexTexts_data()
    {
        // colorFromHex reads exactly six digits pair by pair; colorWithHexString scans a number.
        QTest::addColumn<bool>("scanned");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QColor>("expected"); // invalid: no colour
        QTest::newRow("six digits, upper case") << false << "3593DA" << QColor(0x3593DA);
        QTest::newRow("six: a bad pair stops the reading") << false << "35zzDA" << QColor(0x350000);
        QTest::newRow("six: hash in front") << false << "#3593DA" << QColor(0, 0, 0);
        QTest::newRow("six: digits after six ignored") << false << "3593DA77" << QColor(0x3593DA);
        QTest::newRow("scan: 0X prefix, lower case") << true << "0X23aca3" << QColor(0x23ACA3);
        QTest::newRow("scan: leading blanks, stops at a non-hex character") << true << " \t\n23aca3zz"
                                                                             << QColor(0x23ACA3);
        QTest::newRow("scan: short number is blue") << true << "FF" << QColor(0x0000FF);
        QTest::newRow("scan: 0x then no digit is 0") << true << "0xzz" << QColor(0, 0, 0);
        QTest::newRow("scan: eight digits, top byte ignored") << true << "FF23ACA3" << QColor(0x23ACA3);
        QTest::newRow("scan: leading zeros do not overflow") << true << "000000000023ACA3" << QColor(0x23ACA3);
        QTest::newRow("scan: beyond 32 bits saturates") << true << "123ACA3FF" << QColor(0xFFFFFF);
        QTest::newRow("scan: hash in front") << true << "#23ACA3" << QColor();
        QTest::newRow("scan: empty") << true << "" << QColor();
    }

    void hexTexts()
    {
        QFETCH(bool, scanned);
        QFETCH(QString, text);
        QFETCH(QColor, expected);
        const QColor color = scanned ? Color::colorWithHexString(text) : Color::colorFromHex(text);
        QCOMPARE(color, expected);
        QVERIFY(!color.isValid() || color.alpha() == 255);
    }

    void componentsAreChecked()
    {
        QCOMPARE(Color::colorWithR(256, 0, 1000), QColor(255, 0, 255));
        QCOMPARE(Color::colorWithR(0, 0, 0, -0.5f).alphaF(), 0.0f);
        QCOMPARE(Color::colorWithR(0, 0, 0, std::numeric_limits<float>::quiet_NaN()).alphaF(), 1.0f);
    }

    void colorToStringTruncates()
    {
        const QColor blue(0x3593DA);
        QCOMPARE(Color::colorToString(QColor::fromRgbF(0.999f, 0.999f, 0.999f)), QStringLiteral("fefefe"));
        QCOMPARE(Color::colorToString(QColor::fromRgbF(0.5f, 0.5f, 0.5f)), QStringLiteral("7f7f7f"));
        QCOMPARE(Color::colorToString(blue.toHsl()), QStringLiteral("3593da"));
        QCOMPARE(Color::colorToString(QColor::fromRgbF(1.5f, -0.5f, 0.0f)), QStringLiteral("ff0000"));
        QVERIFY(Color::colorToString(QColor()).isEmpty());
        // Every byte survives the round trip, in RGB and in HSV.
        for (uint v = 0; v < 256; ++v) {
            const QString byte = QStringLiteral("%1").arg(v, 2, 16, QChar(u'0'));
            const QString text = byte + QStringLiteral("%1").arg(255 - v, 2, 16, QChar(u'0')) + byte;
            QCOMPARE(Color::colorToString(Color::colorWithR(v, 255 - v, v)), text);
            QCOMPARE(Color::colorToString(Color::colorWithR(v, 255 - v, v).toHsv()), text);
            QCOMPARE(Color::colorToString(Color::colorFromHex(text)), text);
        }
    }

    void equalityAcrossColourModels_data()
    {
        QTest::addColumn<QColor>("a");
        QTest::addColumn<QColor>("b");
        QTest::addColumn<bool>("equal");
        const QColor blue(0x3593DA);
        QTest::newRow("grey in CMYK, RGB grey") << QColor::fromCmyk(0, 0, 0, 128) << QColor(127, 127, 127) << true;
        QTest::newRow("hue in HSV, RGB") << blue.toHsv() << blue << true;
        QTest::newRow("one 8-bit step apart") << blue << QColor(0x3593DB) << false;
        QTest::newRow("alpha differs") << blue << QColor(0x35, 0x93, 0xDA, 254) << false;
        QTest::newRow("two invalid colours") << QColor() << QColor() << false;
    }

    void equalityAcrossColourModels()
    {
        QFETCH(QColor, a);
        QFETCH(QColor, b);
        QFETCH(bool, equal);
        QCOMPARE(Color::isEqualToColor(a, b), equal);
        QCOMPARE(Color::isEqualToColor(b, a), equal);
    }

    void fontMapsByWeight_data()
    {
        QTest::addColumn<int>("weight");
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("mappedWeight");
        QTest::newRow("thin is light") << int(QFont::Thin) << "ProximaNova-Light" << int(QFont::Light);
        QTest::newRow("just above light is regular") << 301 << "ProximaNova-Regular" << int(QFont::Normal);
        QTest::newRow("just below semibold") << 599 << "ProximaNova-Regular" << int(QFont::Normal);
        QTest::newRow("semibold") << int(QFont::DemiBold) << "ProximaNova-Semibold" << int(QFont::DemiBold);
        QTest::newRow("black is bold") << int(QFont::Black) << "ProximaNova-Bold" << int(QFont::Bold);
    }

    void fontMapsByWeight()
    {
        QFETCH(int, weight);
        QFETCH(QString, family);
        QFETCH(int, mappedWeight);
        QWidget parent;
        auto *label = new QLabel(QStringLiteral("Kitchen"), &parent);
        QFont font(QStringLiteral("Serif"), 13);
        font.setPointSizeF(13.5);
        font.setItalic(true);
        font.setStyleName(QStringLiteral("Light"));
        font.setWeight(QFont::Weight(weight));
        label->setFont(font);
        // Mapping is by weight, so the face chosen once stays on a second call.
        for (int pass = 0; pass < 2; ++pass) {
            View::setupFont(label);
            QCOMPARE(label->font().families(), QStringList{family});
            QCOMPARE(int(label->font().weight()), mappedWeight);
            QCOMPARE(label->font().pointSizeF(), 13.5);
            QVERIFY(label->font().italic() && label->font().styleName().isEmpty());
        }
        // Without the kit's face installed, the substitute draws it.
        if (!QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans")))
            QSKIP("DejaVu Sans is not installed");
        QCOMPARE(QFontInfo(label->font()).family(), QStringLiteral("DejaVu Sans"));
    }

    void formsLoadByClassName_data()
    {
        QTest::addColumn<View::NibFactory>("factory");
        QTest::addColumn<bool>("loads");
        QTest::newRow("registered form") << View::NibFactory([](QWidget *p) -> QWidget * { return new NibCard(p); })
                                         << true;
        QTest::newRow("nothing registered") << View::NibFactory() << false;
        QTest::newRow("factory makes nothing") << View::NibFactory([](QWidget *) { return nullptr; }) << false;
        QTest::newRow("factory makes another class")
            << View::NibFactory([](QWidget *p) -> QWidget * { return new QLineEdit(p); }) << false;
    }

    void formsLoadByClassName()
    {
        QFETCH(View::NibFactory, factory);
        QFETCH(bool, loads);
        if (factory)
            View::registerNib(QStringLiteral("NibCard"), factory);
        QWidget parent;
        NibCard *first = View::loadFromNib<NibCard>(&parent);
        QCOMPARE(first != nullptr, loads);
        // A widget of the wrong class is not left behind in the parent.
        QCOMPARE(parent.findChildren<QWidget *>().size(), loads ? 1 : 0);
        if (!loads)
            return;
        QCOMPARE(first->parentWidget(), &parent);
        // Each load is a new widget; without a parent the caller owns it.
        std::unique_ptr<QWidget> second(View::loadFromNib(QStringLiteral("NibCard")));
        QVERIFY(qobject_cast<NibCard *>(second.get()) && second.get() != first && !second->parent());
        View::unregisterNib(QStringLiteral("NibCard"));
        QVERIFY(!View::loadFromNib<NibCard>());
    }

    void focusIsDroppedDepthFirst_data()
    {
        // The tree, in child order: window > panel > editA; window > dialog (a
        // window of its own, hidden) > editC; window > editB.
        QTest::addColumn<QStringList>("focused");
        QTest::addColumn<QString>("searched");
        QTest::addColumn<bool>("found");
        QTest::addColumn<QStringList>("stillFocused");
        QTest::newRow("nothing focused") << QStringList() << "window" << false << QStringList();
        QTest::newRow("focus deep in the tree") << QStringList{"editA"} << "window" << true << QStringList();
        QTest::newRow("focus outside the searched tree stays")
            << QStringList{"editB"} << "panel" << false << QStringList{"editB"};
        QTest::newRow("inactive child window's focus comes first")
            << QStringList{"editB", "editC"} << "window" << true << QStringList{"editB"};
        QTest::newRow("earlier branch wins over the child window")
            << QStringList{"editA", "editC"} << "window" << true << QStringList{"editC"};
    }

    void focusIsDroppedDepthFirst()
    {
        QFETCH(QStringList, focused);
        QFETCH(QString, searched);
        QFETCH(bool, found);
        QFETCH(QStringList, stillFocused);
        QWidget window;
        window.setObjectName("window");
        window.resize(300, 200);
        auto *panel = new QWidget(&window);
        panel->setObjectName("panel");
        (new QLineEdit(panel))->setObjectName("editA");
        auto *dialog = new QWidget(&window, Qt::Window);
        dialog->setObjectName("dialog");
        (new QLineEdit(dialog))->setObjectName("editC");
        auto *editB = new QLineEdit(&window);
        editB->setObjectName("editB");
        editB->move(0, 40);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        // Activation focuses the first edit; start from no focus at all.
        if (QWidget *initial = QApplication::focusWidget())
            initial->clearFocus();
        for (const QString &name : focused)
            window.findChild<QLineEdit *>(name)->setFocus();
        QWidget *root = searched == window.objectName() ? &window : window.findChild<QWidget *>(searched);
        QCOMPARE(View::findAndResignFirstResponder(root), found);
        for (QLineEdit *edit : window.findChildren<QLineEdit *>()) {
            const bool holds = edit->window()->focusWidget() == edit;
            QVERIFY2(holds == stillFocused.contains(edit->objectName()), qPrintable(edit->objectName()));
        }
        QCOMPARE(editB->hasFocus(), stillFocused.contains("editB"));
        QVERIFY(!View::findAndResignFirstResponder(nullptr));
    }

    void imagesAreFoundByNameWithOrWithoutAnExtension()
    {
        // Drawn from the vector image at any size: sharp, in proportion, not blank.
        for (const QString name : {"buttonStart", "buttonRecord.png", "wifiCounterRecording", "fairzones_scroll_4"}) {
            const QImage image = FrameworkBundle::imageNamed(name).pixmap(QSize(400, 100), 2.0).toImage();
            QCOMPARE(image.height(), 200);
            QCOMPARE(double(image.width()) / image.height(), name.startsWith("fairzones") ? 1.6 : 1.0);
            QVERIFY2(qAlpha(image.pixel(image.width() / 2, image.height() / 3)) > 0, qPrintable(name));
        }
        QVERIFY(FrameworkBundle::imageNamed(QStringLiteral("buttonPause.png")).isNull());
    }

    // The border a style sets, and the background a real press and release show.
    void mainButtonStyles_data()
    {
        QTest::addColumn<QList<uint>>("styles"); // set in turn
        QTest::addColumn<qreal>("radius");
        QTest::addColumn<qreal>("width");
        QTest::addColumn<QColor>("border");
        QTest::addColumn<QColor>("normal");
        QTest::addColumn<QColor>("pressed");
        const QColor built = named("fixed_dark_blue"), grey = named("fixed_light_gray");
        QTest::newRow("0 drops the border")
            << QList<uint>{0} << 10.0 << 0.0 << built << named("dark_blue") << named("medium_blue");
        QTest::newRow("1 keeps the built border")
            << QList<uint>{1} << 10.0 << 1.0 << built << Color::system(4) << named("medium_blue");
        QTest::newRow("3 red pill") << QList<uint>{3} << 22.0 << 2.0 << named("norva_red_1") << grey
                                    << named("norva_red_1");
        QTest::newRow("4 after 3 keeps the red border")
            << QList<uint>{3, 4} << 22.0 << 2.0 << named("norva_red_1") << grey << named("medium_blue");
        QTest::newRow("5 green pill") << QList<uint>{5} << 22.0 << 2.0 << named("fixed_action_bar_green") << grey
                                      << named("fixed_action_bar_green");
        QTest::newRow("large values as 6") << QList<uint>{4000000000u} << 10.0 << 1.0 << built << grey
                                           << named("medium_blue");
    }

    void mainButtonStyles()
    {
        QFETCH(QList<uint>, styles);
        QFETCH(qreal, radius);
        QFETCH(qreal, width);
        QFETCH(QColor, border);
        QFETCH(QColor, normal);
        QFETCH(QColor, pressed);
        BMMainButton button("Record");
        QCOMPARE(button.backgroundColor(), named("dark_blue")); // as built, before any style
        for (uint style : styles)
            button.setStyle(style);
        QCOMPARE(button.cornerRadius(), radius);
        QCOMPARE(button.borderWidth(), width);
        QCOMPARE(button.borderColor(), border);
        QCOMPARE(button.backgroundColor(), normal);
        button.resize(200, 44);
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        QTest::mousePress(&button, Qt::LeftButton);
        QCOMPARE(button.backgroundColor(), pressed);
        QVERIFY(button.isHighlighted());
        QTest::mouseRelease(&button, Qt::LeftButton);
        QCOMPARE(button.backgroundColor(), normal);
        QVERIFY(!button.isHighlighted());
        button.setSelected(true);
        QCOMPARE(button.backgroundColor(), pressed);
    }

    void mainButtonImageWithColorRecoloursAndDrawsAtScale()
    {
        BMMainButton button("Stop");
        button.setStyle(0);
        button.resize(120, 44);
        const QColor green = named("fixed_action_bar_green");
        const QImage image = button.imageWithColor(green);
        QCOMPARE(button.backgroundColor(), green);
        QCOMPARE(image.size(), QSize(120, 44) * image.devicePixelRatio());
        // The middle of the left edge is fill, not title.
        QCOMPARE(image.pixelColor(QPoint(6, 22) * image.devicePixelRatio()).rgb(), green.rgb());
    }

private:
    std::unique_ptr<TestEnvironment> m_env;
};

QTEST_MAIN(tst_BrightmereLook)
#include "tst_BrightmereLook.moc"
