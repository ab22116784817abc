// The media ports, all on one worker process that lives as long as the program.
#pragma once

#include "adapters/media/MediaInspector.h"
#include "adapters/media/MediaKsLib.h"
#include "adapters/media/MediaOptimize.h"
#include "adapters/media/MediaRecSystemAudio.h"
#include "apps/kestrum/Ground.h"

namespace kestrum::app {

/// Path of the worker's program.
inline String WorkerProgram() {
    return InstallFolder() + u"/ksmedia";
}

struct MediaPorts {
    /// `board` is where one draws over a show, null without a screen; it outlives this.
    MediaPorts(host::IEventLoop& loop, adapters::IDrawingBoard* board,
               adapters::PixelSource pixels = adapters::PixelSource::Display)
        : worker(host::ToUtf8(WorkerProgram()), loop), ksLib(worker, board, pixels) {}

    adapters::WorkerLink worker;
    adapters::MediaKsLib ksLib;
    adapters::MediaOptimize ksOptimize{WorkerProgram(), ksLib};
    adapters::MediaRecSystemAudio recSystemAudio{worker};
    adapters::MediaInspector inspector{worker};
};

}  // namespace kestrum::app
