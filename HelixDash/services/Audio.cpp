#include "HelixDash/services/Audio.h"

Audio* Audio::proxy() {
    static Audio audio;
    return &audio;
}
