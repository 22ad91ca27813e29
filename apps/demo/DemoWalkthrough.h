#pragma once

#include <Brightmere/platform/foundation/ManualClock.h>

#include <QDir>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>

#include <functional>
#include <memory>
#include <optional>

class DemoOptions;
class DemoWindow;
class BMSpeedRecordCell;
class FZOptionsPopup;
class QWidget;

namespace Brightmere {
class ViewController;
}

// The headless tour of the kit: a scripted user on the simulated home
// network with a manual clock, through every screen, one picture per step
// ("NN-step.png" in the folder), a progress line per step, and a summary
// (each step, the spots with their speeds, the compare table, the files) at
// the end. Beside the pictures it writes CSV files, a PDF report and a
// backup, and restores that backup into an emptied store.
// Every step checks what it did; the tour stops at the first step that did
// not do what it should, and run() then returns false.
//
// It plays in a world of its own (a temporary home for settings, saved sets
// and text caches), so the user's own saved sets are never touched.
class DemoWalkthrough
{
public:
    // Seconds between two simulated results.
    static constexpr double kInterval = 0.5;

    struct Step
    {
        QString name;
        bool ok = false;
        QString detail;
        QString picture;
    };

    // Call before anything of the kit is used: it moves the settings, saved
    // sets and caches into the temporary world and puts the backend on the
    // manual clock.
    DemoWalkthrough(const QString &folder, QTextStream &out);
    ~DemoWalkthrough();

    // False when the temporary world or the folder could not be made.
    bool isReady() const { return m_ready; }
    Brightmere::Clock *clock() { return &m_clock; }

    // Walks the window's screens; true when every step did what it should.
    bool run(DemoWindow *window, const DemoOptions &options);
    const QList<Step> &steps() const { return m_steps; }
    // Called with the window and the picture's name ("08-delete") just
    // before each picture is taken, the screen as it is shown; also at a
    // few moments no picture keeps: "recording" (a hold under way),
    // "swiped-row" and "compare-picking" (two sets picked).
    using PictureHook = std::function<void(QWidget *window, const QString &picture)>;
    void setPictureHook(PictureHook hook) { m_pictureHook = std::move(hook); }
    QString summary() const;

private:
    using Action = std::function<bool(QString &detail)>;
    bool step(const QString &name, const Action &action);
    // Hands the screen as shown to the picture hook, under the name.
    void moment(const QString &name);
    bool snap(const QString &path);
    bool snapStep();
    void results(int count);
    void recordSpot(int resultsWhileHeld);
    bool choose(FZOptionsPopup *popup, int index);
    FZOptionsPopup *visibleOptionsPopup() const;
    BMSpeedRecordCell *spotRow(int row);
    bool renameSpot(int row, const QString &name);
    bool saveRunAs(const QString &title, QString &detail);
    // A tap on the share button in the bar of the screen on top.
    bool tapShareButton();
    // Share button, then the option; pictures the alert that tells where the
    // file went and closes it. The file's path, empty when none was written.
    QString reportFromScreen(int option, QString &detail);
    // Closes the "saved" alert shown; the path of the file it told of.
    QString closeSavedAlert();
    // Lets the backend's clock follow real time for a while, so a real
    // download is measured against the time it really took.
    void realTime(double seconds);
    // Forget the last answer of the localisation service, before asking it
    // again; waitForTexts() then waits for the next one (or has it already).
    void expectTexts();
    bool waitForTexts();
    template<typename T>
    T *top() const;
    QString spotsLine() const;

    QTemporaryDir m_home;
    QDir m_folder;
    QTextStream &m_out;
    bool m_ready = false;
    // The clock counts seconds from 2001-01-01 UTC: a spring morning of 2026,
    // so the saved sets carry a believable date.
    static constexpr double kStart = 799581600.0;
    Brightmere::ManualClock m_clock{kStart};
    DemoWindow *m_window = nullptr;
    bool m_withService = false;
    std::optional<bool> m_textsAnswer;
    QList<Step> m_steps;
    PictureHook m_pictureHook;
    QString m_picture;
    bool m_pictureTaken = false;
    QStringList m_spotTables;
    QStringList m_compareTable;
    // Reports and the backup written into the folder.
    QStringList m_files;
    // The file of the host's last report.
    QString m_lastReport;
};
