#include "LogCapture.h"
#include "TestEnvironment.h"
#include "ui/BrightmereView.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

using namespace Brightmere;

Q_DECLARE_METATYPE(Brightmere::View::NibFactory)

namespace {

int viewLogLines(const LogCapture &log)
{
    int count = 0;
    for (const LogCapture::Line &line : log.lines())
        count += line.module == QLatin1String("BrightmereView") ? 1 : 0;
    return count;
}

} // namespace

// A form registered under its class name.
class NibCard : public QLabel
{
    Q_OBJECT

public:
    explicit NibCard(QWidget *parent = nullptr)
        : QLabel(QStringLiteral("card"), parent)
    {
    }
};

class tst_BrightmereView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanup()
    {
        View::unregisterNib(QStringLiteral("NibCard"));
        m_env.reset();
    }

    void fontMapsByWeight_data();
    void fontMapsByWeight();
    void fontKeepsSizeAndStyleButNotStyleName();
    void formsLoadByClassName_data();
    void formsLoadByClassName();
    void focusIsDroppedDepthFirst_data();
    void focusIsDroppedDepthFirst();

private:
    std::unique_ptr<TestEnvironment> m_env;
};

void tst_BrightmereView::fontMapsByWeight_data()
{
    QTest::addColumn<int>("weight");
    QTest::addColumn<QString>("family");
    QTest::addColumn<int>("mappedWeight");
    QTest::newRow("thin is light") << int(QFont::Thin) << "ProximaNova-Light" << int(QFont::Light);
    QTest::newRow("just above light is regular") << 301 << "ProximaNova-Regular" << int(QFont::Normal);
    QTest::newRow("medium is regular") << int(QFont::Medium) << "ProximaNova-Regular" << int(QFont::Normal);
    QTest::newRow("just below semibold") << 599 << "ProximaNova-Regular" << int(QFont::Normal);
    QTest::newRow("semibold") << int(QFont::DemiBold) << "ProximaNova-Semibold" << int(QFont::DemiBold);
    QTest::newRow("bold") << int(QFont::Bold) << "ProximaNova-Bold" << int(QFont::Bold);
    QTest::newRow("black is bold") << int(QFont::Black) << "ProximaNova-Bold" << int(QFont::Bold);
}

void tst_BrightmereView::fontMapsByWeight()
{
    QFETCH(int, weight);
    QFETCH(QString, family);
    QFETCH(int, mappedWeight);
    QWidget parent;
    auto *label = new QLabel(QStringLiteral("Kitchen"), &parent);
    QFont font(QStringLiteral("Serif"), 13);
    font.setPointSizeF(13.5);
    font.setWeight(QFont::Weight(weight));
    label->setFont(font);

    View::setupFont(label);
    QCOMPARE(label->font().family(), family);
    QCOMPARE(int(label->font().weight()), mappedWeight);
    QCOMPARE(label->font().pointSizeF(), 13.5);
    QCOMPARE(View::fontFamilyForWeight(weight), family);

    // Mapping is by weight, so the face chosen once stays on a second call.
    View::setupFont(label);
    QCOMPARE(label->font().family(), family);
    QCOMPARE(int(label->font().weight()), mappedWeight);

    // Without the kit's face installed, the substitute draws it.
    if (!QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans")))
        QSKIP("DejaVu Sans is not installed");
    QCOMPARE(QFontInfo(label->font()).family(), QStringLiteral("DejaVu Sans"));
}

void tst_BrightmereView::fontKeepsSizeAndStyleButNotStyleName()
{
    LogCapture log;
    QFont font;
    font.setPixelSize(17);
    font.setItalic(true);
    font.setStyleName(QStringLiteral("Light"));
    font.setWeight(QFont::Bold);
    const QFont mapped = View::kitFont(font);
    QCOMPARE(mapped.family(), QStringLiteral("ProximaNova-Bold"));
    QCOMPARE(mapped.families(), QStringList{QStringLiteral("ProximaNova-Bold")});
    QCOMPARE(mapped.pixelSize(), 17);
    QVERIFY(mapped.italic());
    QVERIFY(mapped.styleName().isEmpty());

    View::setupFont(nullptr);
    QCOMPARE(viewLogLines(log), 1);
}

void tst_BrightmereView::formsLoadByClassName_data()
{
    QTest::addColumn<bool>("registered");
    QTest::addColumn<View::NibFactory>("factory");
    QTest::addColumn<bool>("loads");
    QTest::addColumn<int>("logLines");
    const View::NibFactory card = [](QWidget *parent) -> QWidget * { return new NibCard(parent); };
    QTest::newRow("registered form") << true << card << true << 0;
    QTest::newRow("nothing registered") << false << View::NibFactory() << false << 1;
    QTest::newRow("factory makes nothing") << true << View::NibFactory([](QWidget *) { return nullptr; })
                                           << false << 1;
    QTest::newRow("factory makes another class")
        << true << View::NibFactory([](QWidget *parent) -> QWidget * { return new QLineEdit(parent); }) << false
        << 1;
}

void tst_BrightmereView::formsLoadByClassName()
{
    QFETCH(bool, registered);
    QFETCH(View::NibFactory, factory);
    QFETCH(bool, loads);
    QFETCH(int, logLines);
    if (registered)
        View::registerNib(QStringLiteral("NibCard"), factory);
    LogCapture log;
    QWidget parent;

    NibCard *first = View::loadFromNib<NibCard>(&parent);
    QCOMPARE(first != nullptr, loads);
    QCOMPARE(viewLogLines(log), logLines);
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
    View::registerNib<NibCard>();
    QVERIFY(std::unique_ptr<NibCard>(View::loadFromNib<NibCard>()));
}

void tst_BrightmereView::focusIsDroppedDepthFirst_data()
{
    // The tree, in child order: window > panel > editA; window > dialog (a
    // window of its own, hidden) > editC; window > editB.
    QTest::addColumn<QStringList>("focused");
    QTest::addColumn<QString>("searched");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QStringList>("stillFocused");
    QTest::newRow("nothing focused") << QStringList() << "window" << false << QStringList();
    QTest::newRow("focus deep in the tree") << QStringList{"editA"} << "window" << true << QStringList();
    QTest::newRow("the searched widget itself") << QStringList{"editB"} << "editB" << true << QStringList();
    QTest::newRow("focus outside the searched tree stays")
        << QStringList{"editB"} << "panel" << false << QStringList{"editB"};
    QTest::newRow("inactive child window's focus comes first")
        << QStringList{"editB", "editC"} << "window" << true << QStringList{"editB"};
    QTest::newRow("earlier branch wins over the child window")
        << QStringList{"editA", "editC"} << "window" << true << QStringList{"editC"};
    QTest::newRow("searching from the child window")
        << QStringList{"editB", "editC"} << "dialog" << true << QStringList{"editB"};
}

void tst_BrightmereView::focusIsDroppedDepthFirst()
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
    auto *editA = new QLineEdit(panel);
    editA->setObjectName("editA");
    auto *dialog = new QWidget(&window, Qt::Window);
    dialog->setObjectName("dialog");
    auto *editC = new QLineEdit(dialog);
    editC->setObjectName("editC");
    auto *editB = new QLineEdit(&window);
    editB->setObjectName("editB");
    editB->move(0, 40);
    const QList<QLineEdit *> edits{editA, editB, editC};

    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    // Activation focuses the first edit; start from no focus at all.
    if (QWidget *initial = QApplication::focusWidget())
        initial->clearFocus();
    for (const QString &name : focused)
        window.findChild<QLineEdit *>(name)->setFocus();
    if (focused.contains("editA") || focused.contains("editB"))
        QVERIFY(QApplication::focusWidget() && QApplication::focusWidget()->window() == &window);

    LogCapture log;
    QWidget *root = searched == window.objectName() ? &window : window.findChild<QWidget *>(searched);
    QCOMPARE(View::findAndResignFirstResponder(root), found);
    for (QLineEdit *edit : edits) {
        const bool holds = edit->window()->focusWidget() == edit;
        QVERIFY2(holds == stillFocused.contains(edit->objectName()), qPrintable(edit->objectName()));
    }
    QCOMPARE(editB->hasFocus(), stillFocused.contains("editB"));
    QCOMPARE(viewLogLines(log), 0);

    QVERIFY(!View::findAndResignFirstResponder(nullptr));
    QCOMPARE(viewLogLines(log), 1);
}

QTEST_MAIN(tst_BrightmereView)
#include "tst_BrightmereView.moc"
