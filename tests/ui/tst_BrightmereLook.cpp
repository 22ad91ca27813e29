// The shared look: colours, the kit's face, forms by class name, focus, the
// framework's images and the main button.
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

namespace {

QColor named(const char *key)
{
    return Color::named(QString::fromLatin1(key));
}

// The styles set in turn; the border they leave; the background shown normally and pressed.
struct ButtonStyle { QList<uint> styles; qreal radius, width; QColor border, normal, pressed; };

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

    void hexTextsAndComponents()
    {
        // colorFromHex reads exactly six digits pair by pair.
        QCOMPARE(Color::colorFromHex("3593DA"), QColor(0x3593DA));
        QCOMPARE(Color::colorFromHex("35zzDA"), QColor(0x350000)); // a bad pair stops the reading
        QCOMPARE(Color::colorFromHex("#3593DA"), QColor(0, 0, 0));
        QCOMPARE(Color::colorFromHex("3593DA77"), QColor(0x3593DA));
        // colorWithHexString scans a number.
        QCOMPARE(Color::colorWithHexString("0X23aca3"), QColor(0x23ACA3));
        QCOMPARE(Color::colorWithHexString(" \t\n23aca3zz"), QColor(0x23ACA3));
        QCOMPARE(Color::colorWithHexString("FF"), QColor(0x0000FF));
        QCOMPARE(Color::colorWithHexString("0xzz"), QColor(0, 0, 0));
        QCOMPARE(Color::colorWithHexString("FF23ACA3"), QColor(0x23ACA3)); // the top byte is ignored
        QCOMPARE(Color::colorWithHexString("000000000023ACA3"), QColor(0x23ACA3));
        QCOMPARE(Color::colorWithHexString("123ACA3FF"), QColor(0xFFFFFF)); // beyond 32 bits saturates
        QVERIFY(!Color::colorWithHexString("#23ACA3").isValid() && !Color::colorWithHexString("").isValid());
        // Components beyond 255 are 255; alpha is clamped, not-a-number is 1.
        QCOMPARE(Color::colorWithR(256, 0, 1000), QColor(255, 0, 255));
        QCOMPARE(Color::colorWithR(0, 0, 0, -0.5f).alphaF(), 0.0f);
        QCOMPARE(Color::colorWithR(0, 0, 0, std::numeric_limits<float>::quiet_NaN()).alphaF(), 1.0f);
    }

    void colorToStringTruncatesAndEqualityCrossesModels()
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
        const auto equal = [](const QColor &a, const QColor &b) {
            return Color::isEqualToColor(a, b) && Color::isEqualToColor(b, a);
        };
        QVERIFY(equal(QColor::fromCmyk(0, 0, 0, 128), QColor(127, 127, 127)));
        QVERIFY(equal(blue.toHsv(), blue));
        QVERIFY(!equal(blue, QColor(0x3593DB))); // one 8-bit step apart
        QVERIFY(!equal(blue, QColor(0x35, 0x93, 0xDA, 254)));
        QVERIFY(!equal(QColor(), QColor()));
    }

    void fontMapsByWeight()
    {
        const QList<std::tuple<int, QString, QFont::Weight>> weights{
            {QFont::Thin, "ProximaNova-Light", QFont::Light}, {301, "ProximaNova-Regular", QFont::Normal},
            {599, "ProximaNova-Regular", QFont::Normal}, {QFont::DemiBold, "ProximaNova-Semibold", QFont::DemiBold},
            {QFont::Black, "ProximaNova-Bold", QFont::Bold}};
        for (const auto &[weight, family, mapped] : weights) {
            QLabel label(QStringLiteral("Kitchen"));
            QFont font(QStringLiteral("Serif"));
            font.setPointSizeF(13.5);
            font.setItalic(true);
            font.setStyleName(QStringLiteral("Light"));
            font.setWeight(QFont::Weight(weight));
            label.setFont(font);
            // Mapping is by weight, so the face chosen once stays on a second call.
            for (int pass = 0; pass < 2; ++pass) {
                View::setupFont(&label);
                QCOMPARE(label.font().families(), QStringList{family});
                QCOMPARE(label.font().weight(), mapped);
                QVERIFY(label.font().pointSizeF() == 13.5 && label.font().italic() && label.font().styleName().isEmpty());
            }
        }
        // Without the kit's face installed, the substitute draws it.
        if (QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans")))
            QCOMPARE(QFontInfo(View::kitFont(QFont())).family(), QStringLiteral("DejaVu Sans"));
    }

    void formsLoadByClassName()
    {
        QWidget parent;
        QVERIFY(!View::loadFromNib<NibCard>(&parent)); // nothing registered
        // A factory that makes nothing or another class loads nothing and leaves nothing behind.
        View::registerNib(QStringLiteral("NibCard"), [](QWidget *) { return nullptr; });
        QVERIFY(!View::loadFromNib<NibCard>(&parent));
        View::registerNib(QStringLiteral("NibCard"), [](QWidget *p) -> QWidget * { return new QLineEdit(p); });
        QVERIFY(!View::loadFromNib<NibCard>(&parent));
        QVERIFY(parent.findChildren<QWidget *>().isEmpty());
        View::registerNib<NibCard>();
        NibCard *first = View::loadFromNib<NibCard>(&parent);
        QVERIFY(first && first->parentWidget() == &parent);
        // Each load is a new widget; without a parent the caller owns it.
        std::unique_ptr<QWidget> second(View::loadFromNib(QStringLiteral("NibCard")));
        QVERIFY(qobject_cast<NibCard *>(second.get()) && second.get() != first && !second->parent());
    }

    void focusIsDroppedDepthFirst_data()
    {
        // The tree, in child order: window > panel > editA; window > dialog (a
        // window of its own, hidden) > editC; window > editB.
        QTest::addColumn<QStringList>("focused");
        QTest::addColumn<QString>("searched");
        QTest::addColumn<QStringList>("stillFocused");
        QTest::newRow("nothing focused") << QStringList() << "window" << QStringList();
        QTest::newRow("focus deep in the tree") << QStringList{"editA"} << "window" << QStringList();
        QTest::newRow("focus outside the searched tree stays") << QStringList{"editB"} << "panel" << QStringList{"editB"};
        QTest::newRow("inactive child window's focus comes first")
            << QStringList{"editB", "editC"} << "window" << QStringList{"editB"};
    }

    void focusIsDroppedDepthFirst()
    {
        QFETCH(QStringList, focused);
        QFETCH(QString, searched);
        QFETCH(QStringList, stillFocused);
        QWidget window;
        window.setObjectName("window");
        window.resize(300, 200);
        auto *panel = new QWidget(&window);
        panel->setObjectName("panel");
        (new QLineEdit(panel))->setObjectName("editA");
        auto *dialog = new QWidget(&window, Qt::Window);
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
        QWidget *root = searched == "window" ? &window : window.findChild<QWidget *>(searched);
        QCOMPARE(View::findAndResignFirstResponder(root), focused.size() > stillFocused.size());
        for (QLineEdit *edit : window.findChildren<QLineEdit *>())
            QVERIFY2((edit->window()->focusWidget() == edit) == stillFocused.contains(edit->objectName()),
                     qPrintable(edit->objectName()));
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
        QTest::addColumn<ButtonStyle>("style");
        const QColor built = named("fixed_dark_blue"), grey = named("fixed_light_gray"), blue = named("medium_blue");
        const QColor red = named("norva_red_1"), green = named("fixed_action_bar_green");
        QTest::newRow("0 drops the border") << ButtonStyle{{0}, 10, 0, built, named("dark_blue"), blue};
        QTest::newRow("1 keeps the built border") << ButtonStyle{{1}, 10, 1, built, Color::system(4), blue};
        QTest::newRow("3 red pill") << ButtonStyle{{3}, 22, 2, red, grey, red};
        QTest::newRow("4 after 3 keeps the red border") << ButtonStyle{{3, 4}, 22, 2, red, grey, blue};
        QTest::newRow("5 green pill") << ButtonStyle{{5}, 22, 2, green, grey, green};
        QTest::newRow("large values as 6") << ButtonStyle{{4000000000u}, 10, 1, built, grey, blue};
    }

    void mainButtonStyles()
    {
        QFETCH(ButtonStyle, style);
        BMMainButton button("Record");
        QCOMPARE(button.backgroundColor(), named("dark_blue")); // as built, before any style
        for (uint each : style.styles)
            button.setStyle(each);
        QCOMPARE(button.cornerRadius(), style.radius);
        QCOMPARE(button.borderWidth(), style.width);
        QCOMPARE(button.borderColor(), style.border);
        QCOMPARE(button.backgroundColor(), style.normal);
        button.resize(200, 44);
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        QTest::mousePress(&button, Qt::LeftButton);
        QCOMPARE(button.backgroundColor(), style.pressed);
        QVERIFY(button.isHighlighted());
        QTest::mouseRelease(&button, Qt::LeftButton);
        QCOMPARE(button.backgroundColor(), style.normal);
        QVERIFY(!button.isHighlighted());
        button.setSelected(true);
        QCOMPARE(button.backgroundColor(), style.pressed);
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
