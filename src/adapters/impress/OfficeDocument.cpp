#include "adapters/impress/OfficeDocument.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/XDocumentPropertiesSupplier.hpp>
#include <com/sun/star/drawing/XDrawPagesSupplier.hpp>
#include <com/sun/star/frame/XTitle.hpp>
#include <com/sun/star/presentation/XPresentationSupplier.hpp>

#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

Reference<css::document::XDocumentProperties> PropertiesOf(const Reference<css::frame::XModel>& model) {
    return Reference<css::document::XDocumentPropertiesSupplier>(model, UNO_QUERY_THROW)->getDocumentProperties();
}

css::uno::Any UserDefined(const Reference<css::document::XDocumentProperties>& properties, const char* name) {
    Reference<css::beans::XPropertySet> user(properties->getUserDefinedProperties(), UNO_QUERY_THROW);
    const auto key = rtl::OUString::createFromAscii(name);
    if (!user->getPropertySetInfo()->hasPropertyByName(key)) return {};
    return user->getPropertyValue(key);
}

String Joined(const css::uno::Sequence<rtl::OUString>& words) {
    String text;
    for (sal_Int32 i = 0; i < words.getLength(); ++i) {
        if (i > 0) text += u", ";
        text += FromUno(words[i]);
    }
    return text;
}

String FullNameOf(const Reference<css::frame::XModel>& model) {
    const auto url = model->getURL();
    if (!url.isEmpty()) return PathOfUrl(url);
    return FromUno(Reference<css::frame::XTitle>(model, UNO_QUERY_THROW)->getTitle());
}

}  // namespace

Reference<css::presentation::XPresentation2> OfficeDocument::Show() const {
    Reference<css::presentation::XPresentationSupplier> supplier(m_model, UNO_QUERY_THROW);
    return Reference<css::presentation::XPresentation2>(supplier->getPresentation(), UNO_QUERY_THROW);
}

Reference<css::presentation::XSlideShowController> OfficeDocument::ShowController(const String& source) const {
    const auto show = Show();
    const auto controller = show->isRunning() ? show->getController() : nullptr;
    if (!controller.is()) throw OfficeError(source, u"The slide show has ended.");
    return controller;
}

std::int32_t OfficeDocument::SlideCount() const {
    return Reference<css::drawing::XDrawPagesSupplier>(m_model, UNO_QUERY_THROW)->getDrawPages()->getCount();
}

Reference<css::drawing::XDrawPage> OfficeDocument::Page(std::int32_t number) const {
    Reference<css::drawing::XDrawPages> pages =
        Reference<css::drawing::XDrawPagesSupplier>(m_model, UNO_QUERY_THROW)->getDrawPages();
    if (number < 1 || number > pages->getCount())
        throw host::Error(host::ErrorNumber::OutOfRange, u"Slides", u"There is no slide with this number.");
    return Reference<css::drawing::XDrawPage>(pages->getByIndex(number - 1), UNO_QUERY_THROW);
}

DocumentFacts OfficeDocument::ReadFacts() const {
    DocumentFacts facts;
    facts.fullName = FullNameOf(m_model);
    const auto properties = PropertiesOf(m_model);
    facts.properties = {{u"title", FromUno(properties->getTitle())},
                        {u"author", FromUno(properties->getAuthor())},
                        {u"subject", FromUno(properties->getSubject())},
                        {u"comments", FromUno(properties->getDescription())},
                        {u"keywords", Joined(properties->getKeywords())}};
    // The import keeps these as properties of the user.
    const std::pair<const char16_t*, const char*> others[] = {
        {u"manager", "Manager"}, {u"company", "Company"}, {u"category", "OOXMLCorePropertyCategory"}};
    for (const auto& [name, userName] : others) {
        rtl::OUString text;
        if (UserDefined(properties, userName) >>= text) facts.properties[name] = FromUno(text);
    }
    std::lock_guard lock(m_mutex);
    m_facts = facts;
    return facts;
}

bool OfficeDocument::IsFinal() const {
    bool final = false;
    return (UserDefined(PropertiesOf(m_model), "_MarkAsFinal") >>= final) && final;
}

DocumentFacts OfficeDocument::Remembered() const {
    std::lock_guard lock(m_mutex);
    return m_facts;
}

std::int32_t SlideNumber(const Reference<css::drawing::XDrawPage>& page) {
    sal_Int16 number = 0;
    Reference<css::beans::XPropertySet>(page, UNO_QUERY_THROW)->getPropertyValue("Number") >>= number;
    return number;
}

std::vector<std::shared_ptr<OfficeDocument>> OfficeDocuments::All() const {
    std::lock_guard lock(m_mutex);
    return m_documents;
}

std::shared_ptr<OfficeDocument> OfficeDocuments::Find(const Reference<css::frame::XModel>& model) const {
    for (const auto& document : All())  // comparing may ask the office: not under the lock
        if (document->Model() == model) return document;
    return nullptr;
}

void OfficeDocuments::Add(std::shared_ptr<OfficeDocument> document) {
    std::lock_guard lock(m_mutex);
    m_documents.push_back(std::move(document));
}

void OfficeDocuments::Remove(const std::shared_ptr<OfficeDocument>& document) {
    std::lock_guard lock(m_mutex);
    std::erase(m_documents, document);
}

}  // namespace kestrum::impress
