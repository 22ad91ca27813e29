#include "SystemSound.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/platform/foundation/MainQueue.h>
#include <Brightmere/resources/FrameworkBundle.h>

#include <QAudioDevice>
#include <QCoreApplication>
#include <QMediaDevices>
#include <QPointer>
#include <QSoundEffect>
#include <QUrl>

#include <atomic>

namespace Brightmere {

namespace {

const QString kModule = QStringLiteral("SystemSound");

std::atomic<int> s_playCount{0};

// The effect and what we learnt about it live on the main thread.
struct Player
{
    QPointer<QSoundEffect> effect;
    bool created = false;
    bool audible = false;
    bool noticeLogged = false;
};

Player &player()
{
    static Player instance;
    return instance;
}

void logNoticeOnce(const QString &message)
{
    Player &p = player();
    if (p.noticeLogged)
        return;
    p.noticeLogged = true;
    BMLogger::sharedInstance().logFromModule(kModule, 2, "%@", message);
}

void createEffect()
{
    Player &p = player();
    p.created = true;
    if (QMediaDevices::audioOutputs().isEmpty()) {
        logNoticeOnce(QStringLiteral("no audio output device: sounds are counted but not heard"));
        return;
    }
    auto *effect = new QSoundEffect(QCoreApplication::instance());
    effect->setSource(QUrl(QStringLiteral("qrc") + SystemSound::clickResourcePath()));
    QObject::connect(effect, &QSoundEffect::statusChanged, effect, [effect] {
        if (effect->status() == QSoundEffect::Error) {
            player().audible = false;
            logNoticeOnce(QStringLiteral("the click cannot be played: sounds are counted but not heard"));
        }
    });
    p.effect = effect;
    p.audible = true;
}

void playOnMainThread()
{
    if (!QCoreApplication::instance())
        return;
    Player &p = player();
    if (!p.created)
        createEffect();
    if (p.audible && p.effect)
        p.effect->play();
}

} // namespace

void SystemSound::play(quint32 soundId)
{
    Q_UNUSED(soundId) // every id is the click
    ++s_playCount;
    if (!QCoreApplication::instance()) {
        logNoticeOnce(QStringLiteral("no application: sounds are counted but not heard"));
        return;
    }
    if (MainQueue::isMainThread())
        playOnMainThread();
    else
        MainQueue::async(playOnMainThread);
}

int SystemSound::playCount()
{
    return s_playCount.load();
}

void SystemSound::reset()
{
    s_playCount = 0;
    Player &p = player();
    if (p.effect)
        p.effect->deleteLater();
    p = Player{};
}

QString SystemSound::clickResourcePath()
{
    return FrameworkBundle::resourcePath(QStringLiteral("sounds/click.wav"));
}

} // namespace Brightmere
