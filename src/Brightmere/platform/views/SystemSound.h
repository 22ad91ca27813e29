#pragma once

#include <QString>
#include <QtGlobal>

namespace Brightmere {

// The system-sound service: every sound id plays the kit's bundled click
// (id 0 included; the kit plays sound 0 on purpose). One sound effect is made
// on first use and reused, so playing many times a second stays cheap. Every
// play is counted, also where there is no audio device; that case is logged
// once and then stays silent.
class SystemSound
{
public:
    static void play(quint32 soundId);
    static int playCount();

    // Forgets the count and the effect, so the next play looks for an audio
    // device again.
    static void reset();

    // The bundled click, ":/sounds/click.wav".
    static QString clickResourcePath();
};

} // namespace Brightmere
