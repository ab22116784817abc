// Screen and webcam encoded into one picture: whenever either changes, the webcam's picture is drawn over the screen's
// at its place, and what comes out is encoded. The packages hold both tracks in order of arrival, which is not quite
// the order of time; pictures wait half a second for their turn.
#pragma once

#include <cstdint>
#include <map>

#include "media/convert/MovieEncoder.h"
#include "media/convert/PictureDecoder.h"
#include "media/convert/PictureScaler.h"
#include "media/convert/TrackJob.h"

namespace kestrum::media {

/// `area` with even sides and corner, moved and shrunk until it lies within a movie of that size; empty if nothing is
/// left of it.
CameraArea FitInto(const CameraArea& area, int width, int height);

class VideoMix : public TrackJob {
  public:
    struct Sources {
        const AVStream& screen;
        const AVStream& camera;
    };

    /// `area` lies within the movie, see FitInto.
    VideoMix(const Sources& sources, const CameraArea& area, const VideoEncodeSettings& settings, KeyFramePlan plan,
             Mp4Output& output);
    /// Takes the packets of both tracks.
    void Take(AVPacket& packet) override;
    void Finish(std::int64_t lengthMs) override;

  private:
    struct Waiting {
        bool camera = false;
        bool keyFrame = false;
        AvHandle<AVFrame> picture;
    };

    void Decode(const AVPacket* packet, bool camera);
    void Wait(const AVFrame& picture, std::int64_t pos, bool camera);
    void ShowUntil(std::int64_t pos);
    void Show(Waiting change, std::int64_t pos);
    void HideStaleCamera(std::int64_t pos);
    void PutMixed(std::int64_t pos, bool keyFrame);

    int m_cameraTrack;
    CameraArea m_area;
    PictureDecoder m_screenDecoder;
    PictureDecoder m_cameraDecoder;
    PictureScaler m_screenScaler;
    PictureScaler m_cameraScaler;
    MovieEncoder m_encoder;
    std::multimap<std::int64_t, Waiting> m_waiting;  ///< by position
    std::int64_t m_newest = 0;                       ///< the last position that came out of a decoder
    AvHandle<AVFrame> m_screen;                      ///< what is seen, in the movie's size; null before the first
    AvHandle<AVFrame> m_camera;                      ///< in the area's size; null where the webcam was off
    std::int64_t m_cameraPos = 0;
};

}  // namespace kestrum::media
