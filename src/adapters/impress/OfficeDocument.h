// One presentation open in the office: its UNO model, what is remembered of it for the time after its office has died,
// and the listeners that turn its life into events.
#pragma once

#include <atomic>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/presentation/XPresentation2.hpp>
#include <com/sun/star/presentation/XSlideShowController.hpp>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "adapters/impress/OfficeEvents.h"
#include "host/String.h"

namespace kestrum::impress {

namespace css = com::sun::star;

/// Facts of a document that outlive it.
struct DocumentFacts {
    String fullName;
    std::map<String, String> properties;  ///< by lower-case English name; a missing one is not in it
};

class OfficeDocument {
  public:
    explicit OfficeDocument(const css::uno::Reference<css::frame::XModel>& model) : m_model(model) {}

    // Inside a job only; UNO exceptions leave.
    const css::uno::Reference<css::frame::XModel>& Model() const { return m_model; }
    css::uno::Reference<css::presentation::XPresentation2> Show() const;
    /// Controller of the running show; raises if none runs.
    css::uno::Reference<css::presentation::XSlideShowController> ShowController(const String& source) const;
    std::int32_t SlideCount() const;
    /// Slide with document number `number`; raises host::Error outside 1 to SlideCount.
    css::uno::Reference<css::drawing::XDrawPage> Page(std::int32_t number) const;
    /// Reads the facts and remembers them.
    DocumentFacts ReadFacts() const;
    /// True if the author marked the presentation as final.
    bool IsFinal() const;

    /// Loading goes on after the document has a window; a show that starts before its end is not drawn for seconds. Any
    /// thread.
    void MarkLoaded() { m_loaded = true; }
    bool IsLoaded() const { return m_loaded; }

    /// Facts as last read; any thread.
    DocumentFacts Remembered() const;

  private:
    css::uno::Reference<css::frame::XModel> m_model;
    std::atomic<bool> m_loaded = false;
    mutable std::mutex m_mutex;
    mutable DocumentFacts m_facts;
};

/// Document number of a slide's page, from 1.
std::int32_t SlideNumber(const css::uno::Reference<css::drawing::XDrawPage>& page);

/// Hears of shows, slides and the closing of `document` from now on. Inside a job only.
void Listen(const std::shared_ptr<OfficeDocument>& document, const std::shared_ptr<OfficeEvents>& events);

/// The presentations that are listened to. Any thread.
class OfficeDocuments {
  public:
    std::vector<std::shared_ptr<OfficeDocument>> All() const;
    std::shared_ptr<OfficeDocument> Find(const css::uno::Reference<css::frame::XModel>& model) const;
    void Add(std::shared_ptr<OfficeDocument> document);
    void Remove(const std::shared_ptr<OfficeDocument>& document);

  private:
    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<OfficeDocument>> m_documents;
};

}  // namespace kestrum::impress
