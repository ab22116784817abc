// The media ports, all on one worker process that lives as long as the program.
#pragma once

#include "adapters/media/MediaKsLib.h"
#include "adapters/media/MediaOptimize.h"
#include "adapters/media/MediaRecSystemAudio.h"
#include "apps/kestrum/Ground.h"

namespace kestrum::app {

struct MediaPorts {
    MediaPorts(host::IEventLoop& loop, Ground& ground);

    adapters::MediaKsLib ksLib;
    adapters::MediaOptimize ksOptimize;
    adapters::MediaRecSystemAudio recSystemAudio;
};

}  // namespace kestrum::app
