#include "media/capture/PictureSource.h"

#include <utility>

#include "media/capture/ColourConvert.h"

namespace kestrum::media {

PictureSource::PictureSource(const std::string& display, const Area& area, std::shared_ptr<ScreenCast> cast,
                             int frameWidth, int frameHeight)
    : m_screen(display, area, std::move(cast)),
      m_pixels(area.width, area.height),
      m_fresh(area.width, area.height),
      m_changes(area.width, area.height),
      m_picture(frameWidth, frameHeight) {
    if (frameWidth != area.width || frameHeight != area.height) {
        m_fitter.emplace(area.width, area.height, frameWidth, frameHeight);
        m_frameChanges.emplace(frameWidth, frameHeight);
    }
    // The first picture is converted as a whole, whatever the screen shows.
    m_fresh.MarkAll();
}

bool PictureSource::Refresh(bool everywhere) {
    m_screen.Fetch(m_pixels, m_fresh, everywhere);
    m_pointer.Update(m_screen.FetchPointer(), m_fresh);
    if (m_fresh.Count() == 0) return false;
    Convert();
    m_changes.Add(m_fresh);
    m_fresh.Clear();
    return true;
}

void PictureSource::Convert() {
    m_pointer.Paint(m_pixels);
    if (m_fitter) {
        m_fitter->Draw(m_pixels, m_picture);
        m_frameChanges->MarkAll();
    } else {
        ConvertChanged(m_pixels, m_picture, m_fresh);
    }
    m_pointer.Remove(m_pixels);
}

void PictureSource::Encoded() {
    m_changes.Clear();
    if (m_frameChanges) m_frameChanges->Clear();
}

}  // namespace kestrum::media
