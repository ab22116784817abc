#include "media/capture/VideoEncoder.h"

#include <stdint.h>
// x264.h wants the integer types before it.
#include <x264.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "media/capture/CaptureError.h"
#include "media/capture/h264/SmallPictureWriter.h"

namespace kestrum::media {
namespace {

// The stream's parameter sets must not depend on the frame rate chosen, so that a later recording fits an earlier one:
// the encoder is told this rate always, and the limit of the bit rate is scaled instead.
constexpr int kNominalRate = 30;
constexpr float kQuality = 22;
// Of a film, that is when for a second each picture changes in much: half the bits, and nobody sees the difference
// while it moves. What it leaves on the screen is made as fine as the rest once it stands.
constexpr float kFilmQuality = 24;
// Highest bit rate of a full-screen video: this many bits a second for each pixel of the picture (1080p: 8 Mbit/s).
constexpr double kBitsPerPixel = 4.0;
// Up to this share of the macroblocks a change is small: there our own writer is faster by far, and near the share of
// bits that x264 saves.
constexpr std::size_t kSmallShare = 10;
// After a key frame that was asked for, as a rule a new slide that may come with an animation, and after two big
// changes within this time, x264 goes on for as long, since the next big one would be a key frame.
constexpr int kHoldSeconds = 2;

int LevelFor(int width, int height) {
    const int blocks = ((width + 15) / 16) * ((height + 15) / 16);
    if (blocks <= 8192) return 40;
    if (blocks <= 22080) return 50;
    return blocks <= 36864 ? 51 : 60;
}

x264_param_t MakeParameters(const VideoEncoderSettings& settings) {
    x264_param_t p;
    x264_param_default_preset(&p, "superfast", "zerolatency");
    p.i_log_level = X264_LOG_NONE;
    p.i_threads = 1;
    p.b_sliced_threads = 0;
    p.i_width = settings.width;
    p.i_height = settings.height;
    p.i_csp = X264_CSP_I420;
    p.i_level_idc = LevelFor(settings.width, settings.height);
    // With variable frame rate input the encoder would hold a picture back until the next change of the screen.
    p.b_vfr_input = 0;
    p.i_fps_num = kNominalRate;
    p.i_fps_den = 1;
    p.i_keyint_max = X264_KEYINT_MAX_INFINITE;
    p.i_keyint_min = 1;
    p.i_scenecut_threshold = 0;
    p.b_repeat_headers = settings.headersInKeyFrames;
    p.b_annexb = 0;
    p.vui.i_colorprim = p.vui.i_transfer = p.vui.i_colmatrix = 1;  // BT.709
    p.vui.b_fullrange = 0;
    p.analyse.b_mb_info = 1;
    p.analyse.i_weighted_pred = X264_WEIGHTP_NONE;
    p.rc.i_aq_mode = X264_AQ_NONE;
    p.rc.i_rc_method = X264_RC_CRF;
    p.rc.f_rf_constant = kQuality;
    p.rc.f_qcompress = 1;
    const double scale = static_cast<double>(kNominalRate) / settings.framesPerSecond;
    p.rc.i_vbv_max_bitrate =
        std::max(1000, static_cast<int>(kBitsPerPixel * settings.width * settings.height * scale / 1000));
    p.rc.i_vbv_buffer_size = p.rc.i_vbv_max_bitrate;
    x264_param_apply_profile(&p, "high");
    return p;
}

// In the package's header a unit has a length of two bytes in front, not of four.
void AppendUnit(Bytes& out, std::span<const std::uint8_t> unit) {
    out.insert(out.end(), unit.begin() + 2, unit.end());
}

const x264_nal_t* FindUnit(const x264_nal_t* units, int count, int type) {
    const auto* end = units + count;
    const auto* found = std::find_if(units, end, [type](const x264_nal_t& unit) { return unit.i_type == type; });
    return found == end ? nullptr : found;
}

}  // namespace

class VideoEncoder::Impl {
  public:
    explicit Impl(const VideoEncoderSettings& settings) {
        x264_param_t parameters = MakeParameters(settings);
        m_encoder = x264_encoder_open(&parameters);
        if (!m_encoder) throw CaptureError(CaptureErrorKind::kEncoder, "The video encoder does not take this size.");
        m_subpelRefine = parameters.analyse.i_subpel_refine;
        m_partitions = parameters.analyse.inter;
        m_columns = (settings.width + kBlock - 1) / kBlock;
        m_blocks.resize(static_cast<std::size_t>(m_columns) * ((settings.height + kBlock - 1) / kBlock));
        m_holdPictures = kHoldSeconds * settings.framesPerSecond;
        m_filmPictures = settings.framesPerSecond;
        m_headersInKeyFrames = settings.headersInKeyFrames;
        ReadHeaders(settings);
    }
    ~Impl() { x264_encoder_close(m_encoder); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    EncodedPicture Encode(const I420Picture& picture, const ChangeMap& changes, bool key) {
        const bool isSmall = changes.Count() <= changes.Size() / kSmallShare;
        ++m_picturesSinceBig;
        m_bigInARow = key || isSmall ? 0 : m_bigInARow + 1;
        if (!key && isSmall && m_small && !m_isCoarse && (m_isAfterSmall || !m_isBusy))
            return EncodeSmall(picture, changes);
        const EncodedPicture encoded = EncodeWhole(picture, changes, key || m_isAfterSmall);
        m_isAfterSmall = false;
        const bool isSoon = m_picturesSinceBig < m_holdPictures;
        m_isBusy = key || (isSoon && (m_isBusy || !isSmall));
        if (key || !isSmall) m_picturesSinceBig = 0;
        return encoded;
    }

    Bytes avcC;

  private:
    EncodedPicture EncodeSmall(const I420Picture& picture, const ChangeMap& changes) {
        if (!m_isAfterSmall) {
            const x264_image_t& last = m_last.img;
            m_small->TakeOver({last.plane[0], last.i_stride[0], last.plane[1], last.i_stride[1]}, m_picturesSinceKey);
        }
        m_isAfterSmall = true;
        return {false, m_small->Write(picture, changes)};
    }

    EncodedPicture EncodeWhole(const I420Picture& picture, const ChangeMap& changes, bool key) {
        x264_picture_t in;
        x264_picture_init(&in);
        in.i_type = key ? X264_TYPE_IDR : X264_TYPE_AUTO;
        in.i_pts = m_count++;
        Attach(in, picture);
        const bool isFilm = m_small && m_bigInARow >= m_filmPictures;
        if (m_isCoarse && !isFilm)
            std::fill(m_blocks.begin(), m_blocks.end(), 0);
        else
            FillBlocks(changes);
        SetCoarse(isFilm);
        in.prop.mb_info = m_blocks.data();
        x264_nal_t* units = nullptr;
        int unitCount = 0;
        const int size = x264_encoder_encode(m_encoder, &units, &unitCount, &in, &m_last);
        if (size <= 0) throw CaptureError(CaptureErrorKind::kEncoder, "The video encoder failed.");
        const bool isKey = m_last.b_keyframe != 0;
        m_picturesSinceKey = isKey ? 1 : m_picturesSinceKey + 1;
        if (isKey && m_small && m_headersInKeyFrames) return {true, WithPictureSet(units, unitCount)};
        return {isKey, {units[0].p_payload, static_cast<std::size_t>(size)}};
    }

    // The sample with our own parameter set among those of x264, in front of the picture itself.
    std::span<const std::uint8_t> WithPictureSet(const x264_nal_t* units, int count) {
        m_keySample.clear();
        for (const x264_nal_t& unit : std::span(units, static_cast<std::size_t>(count))) {
            if (unit.i_type == NAL_SLICE_IDR && unit.i_first_mb == 0) {
                const Bytes set = m_small->PictureSet();
                m_keySample.insert(m_keySample.end(), set.begin(), set.end());
            }
            m_keySample.insert(m_keySample.end(), unit.p_payload, unit.p_payload + unit.i_payload);
        }
        return m_keySample;
    }

    static void Attach(x264_picture_t& in, const I420Picture& picture) {
        in.img.i_csp = X264_CSP_I420;
        in.img.i_plane = 3;
        // The encoder's interface takes pictures without const; it only reads them.
        in.img.plane[0] = const_cast<std::uint8_t*>(picture.luma.data());
        in.img.plane[1] = const_cast<std::uint8_t*>(picture.cb.data());
        in.img.plane[2] = const_cast<std::uint8_t*>(picture.cr.data());
        in.img.i_stride[0] = picture.lumaStride;
        in.img.i_stride[1] = in.img.i_stride[2] = picture.chromaStride;
    }

    void SetCoarse(bool coarse) {
        if (coarse == m_isCoarse) return;
        m_isCoarse = coarse;
        x264_param_t parameters;
        x264_encoder_parameters(m_encoder, &parameters);
        parameters.rc.f_rf_constant = coarse ? kFilmQuality : kQuality;
        // A film's motion in whole pixels and whole macroblocks: near the same bits, and a sixth less time.
        parameters.analyse.i_subpel_refine = coarse ? 0 : m_subpelRefine;
        parameters.analyse.inter = coarse ? 0 : m_partitions;
        x264_encoder_reconfig(m_encoder, &parameters);
    }

    void FillBlocks(const ChangeMap& changes) {
        for (int row = 0; row < changes.Rows(); ++row) {
            for (int column = 0; column < changes.Columns(); ++column) {
                m_blocks[static_cast<std::size_t>(row) * m_columns + column] =
                    changes.IsChanged(column, row) ? 0 : X264_MBINFO_CONSTANT;
            }
        }
    }

    void ReadHeaders(const VideoEncoderSettings& settings) {
        x264_nal_t* units = nullptr;
        int count = 0;
        x264_encoder_headers(m_encoder, &units, &count);
        const auto* sps = FindUnit(units, count, NAL_SPS);
        const auto* pps = FindUnit(units, count, NAL_PPS);
        if (!sps || !pps) throw CaptureError(CaptureErrorKind::kEncoder, "The video encoder gave no parameter sets.");
        const auto sequence = h264::ReadSequenceSet({sps->p_payload + 4, static_cast<std::size_t>(sps->i_payload) - 4});
        if (sequence && settings.smallPictures) m_small.emplace(*sequence, settings.width, settings.height);
        BuildAvcC(*sps, *pps);
    }

    void BuildAvcC(const x264_nal_t& sps, const x264_nal_t& pps) {
        const std::uint8_t* profile = sps.p_payload + 5;  // behind length and unit type: profile, constraints, level
        avcC = {1, profile[0], profile[1], profile[2], 0xFF, 0xE1};
        AppendUnit(avcC, {sps.p_payload, static_cast<std::size_t>(sps.i_payload)});
        avcC.push_back(m_small ? 2 : 1);
        AppendUnit(avcC, {pps.p_payload, static_cast<std::size_t>(pps.i_payload)});
        if (m_small) AppendUnit(avcC, m_small->PictureSet());
        const bool high = profile[0] >= 100;
        if (high) avcC.insert(avcC.end(), {0xFD, 0xF8, 0xF8, 0});  // 4:2:0, 8 bits, no extension sets
    }

    x264_t* m_encoder = nullptr;
    int m_subpelRefine = 0;         ///< of all that is no film
    unsigned int m_partitions = 0;  ///< the same
    int m_columns = 0;
    std::vector<std::uint8_t> m_blocks;
    std::int64_t m_count = 0;
    x264_picture_t m_last{};  ///< as decoders show it; valid until x264's next picture
    std::uint32_t m_picturesSinceKey = 0;
    std::optional<h264::SmallPictureWriter> m_small;  ///< nothing if x264 has to write all pictures
    bool m_isAfterSmall = false;                      ///< the last picture was a small one
    bool m_isBusy = false;                            ///< another big change is likely
    int m_picturesSinceBig = 0;
    int m_holdPictures = 0;
    int m_bigInARow = 0;
    int m_filmPictures = 0;   ///< so many big changes in a row are a film
    bool m_isCoarse = false;  ///< pictures of a film are what decoders show
    bool m_headersInKeyFrames = false;
    Bytes m_keySample;
};

VideoEncoder::VideoEncoder(const VideoEncoderSettings& settings) : m_impl(std::make_unique<Impl>(settings)) {}
VideoEncoder::~VideoEncoder() = default;
const Bytes& VideoEncoder::AvcC() const {
    return m_impl->avcC;
}
EncodedPicture VideoEncoder::Encode(const I420Picture& picture, const ChangeMap& changes, bool key) {
    return m_impl->Encode(picture, changes, key);
}

}  // namespace kestrum::media
