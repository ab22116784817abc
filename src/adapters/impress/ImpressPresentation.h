// A presentation open in the office. Its name and properties outlive the office: they were read when its show began.
#pragma once

#include "adapters/impress/OfficeModel.h"

namespace kestrum::impress {

class ImpressPresentation : public host::IPresentation {
  public:
    ImpressPresentation(std::shared_ptr<OfficeModel> office, std::shared_ptr<OfficeDocument> document)
        : m_office(std::move(office)), m_document(std::move(document)) {}
    String FullName() override;
    std::int16_t Saved() override;
    void SetSaved(std::int16_t saved) override;
    float SlideWidth() override;
    float SlideHeight() override;
    std::int32_t SlideCount() override;
    std::unique_ptr<host::ISlide> Slide(std::int32_t index) override;
    std::unique_ptr<host::ISlideShowSettings> SlideShowSettings() override;
    String BuiltInDocumentProperty(const String& name) override;

  private:
    DocumentFacts Facts(const String& source);
    float PageSize(const char* side);

    std::shared_ptr<OfficeModel> m_office;
    std::shared_ptr<OfficeDocument> m_document;
};

/// Frame of a document's window, given the office and the document's model. Runs inside a job.
using FindFrame =
    css::uno::Reference<css::frame::XFrame> (*)(const css::uno::Reference<css::uno::XComponentContext>& remote,
                                                const css::uno::Reference<css::frame::XModel>& model);

/// Brings a window of `document` to the front. Raises only for a presentation marked as final, since that is what the
/// caller takes a failure for; anything else that fails leaves the window where it is.
void ActivateFrame(OfficeModel& office, const std::shared_ptr<OfficeDocument>& document, const String& source,
                   FindFrame findFrame);

}  // namespace kestrum::impress
