// What each state of the running encoder means: a table.
#include <array>

#include "recording/modEncoder.h"
#include "recording/modViewer.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum::modEncoder {

namespace {

enum class Order { AbortThenMessage, MessageThenAbort };

/// A fault of the encoder. Texts without a key are fixed.
struct Fault {
    std::int32_t state;
    Order order;
    StringView section, key, text;
};

using namespace host::encoder_state;

constexpr std::array<Fault, 12> kFaults{{
    {kGone, Order::AbortThenMessage, u"frmCommon", u"msgKsdCrash",
     u"The recording engine stopped unexpectedly. What was recorded so far is kept."},
    {kFileError, Order::MessageThenAbort, u"", u"", u"write, create or open file error!"},
    {kWaveOverflow, Order::AbortThenMessage, u"", u"", u"WAVE buffer overlow!"},
    {kVideoOverflow, Order::AbortThenMessage, u"", u"", u"VIDEO buffer overlow!"},
    {kAudioOverflow, Order::AbortThenMessage, u"", u"", u"AUDIO buffer overlow!"},
    {kCursorOverflow, Order::AbortThenMessage, u"", u"", u"CURSOR buffer overlow!"},
    {kScreenOverflow, Order::AbortThenMessage, u"", u"", u"SCREEN buffer overlow!"},
    {kOutOfMemory, Order::AbortThenMessage, u"", u"", u"MEMORY allocation error!"},
    {kLargestSize, Order::AbortThenMessage, u"frmMainBar", u"msgMaxKsSizeOnRecording",
     u"The recording has reached the largest size of a project and was ended."},
    {kCursorError, Order::AbortThenMessage, u"", u"", u"Get cursor icon error!"},
    {kResolutionChanged, Order::AbortThenMessage, u"", u"",
     u"Kestrum does not have support for changing screen resolution"},
    {kDiskFull, Order::AbortThenMessage, u"", u"", u"there is not enough free disk space! (free disk space < 100MB)"},
}};

void Tell(const recording::Context& c, const Fault& fault) {
    modMsgBox::MsgBoxRequest request;
    request.text =
        fault.key.empty() ? String(fault.text) : modLanguage::GetResString(c, fault.section, fault.key, fault.text);
    request.topmost = fault.order == Order::MessageThenAbort;  // the show is still on screen
    bool checked = false;
    modMsgBox::ShowMsgBox(c, request, checked);
}

}  // namespace

void CheckEncoderState(const recording::Context& c) {
    std::int32_t state = c.host.ksLib.EncoderState();
    for (const Fault& fault : kFaults) {
        if (fault.state != state) continue;
        c.recording.faulted = true;
        modViewer::UnloadForm(c, u"frmRecDot");  // nothing is recorded while the message waits for its answer
        if (fault.order == Order::AbortThenMessage) modViewer::AbortRecording(c);
        Tell(c, fault);
        if (fault.order == Order::MessageThenAbort) modViewer::AbortRecording(c);
        return;
    }
    if (state > kDiskFull) modViewer::AbortRecording(c);
}

}  // namespace kestrum::modEncoder
