// Every committed input of the fuzz targets, the seed corpora and the inputs
// that once broke a target, run through the very entry points the targets
// use: on every build, without clang, what a fuzzer found stays fixed.
#include "FuzzEntryPoints.h"

#include "I18NTestHelpers.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kFuzzDir = QStringLiteral(BRIGHTMERE_FUZZ_DIR);

QFileInfoList inputsOf(const QString &kind, FuzzEntryPoints::Target target)
{
    return QDir(kFuzzDir + u'/' + kind + u'/' + FuzzEntryPoints::targetName(target))
        .entryInfoList(QDir::Files, QDir::Name);
}

} // namespace

class tst_FuzzCorpusReplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        FuzzEntryPoints::setUp(m_dir.path());
    }

    void cleanupTestCase() { QVERIFY(settle()); }

    // A folder name typed wrong would make the replay pass on nothing.
    void everyTargetHasSeeds()
    {
        for (FuzzEntryPoints::Target target : FuzzEntryPoints::allTargets())
            QVERIFY2(inputsOf(QStringLiteral("corpus"), target).size() >= 3,
                     qPrintable(FuzzEntryPoints::targetName(target)));
    }

    void replay_data()
    {
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("file");
        for (FuzzEntryPoints::Target target : FuzzEntryPoints::allTargets()) {
            for (const QString &kind : {QStringLiteral("corpus"), QStringLiteral("crashes")}) {
                for (const QFileInfo &input : inputsOf(kind, target))
                    QTest::addRow("%s/%s/%s", qPrintable(kind), qPrintable(FuzzEntryPoints::targetName(target)),
                                  qPrintable(input.fileName()))
                        << int(target) << input.filePath();
            }
        }
    }

    void replay()
    {
        QFETCH(int, target);
        QFETCH(QString, file);
        const QString problem = FuzzEntryPoints::run(FuzzEntryPoints::Target(target), readFile(file));
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

private:
    QTemporaryDir m_dir;
};

// The reports target draws: a GUI application, offscreen.
QTEST_MAIN(tst_FuzzCorpusReplay)
#include "tst_FuzzCorpusReplay.moc"
