#include "adapters/impress/DeckLoader.h"

#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/document/XTypeDetection.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/task/XInteractionAbort.hpp>
#include <com/sun/star/task/XInteractionApprove.hpp>
#include <com/sun/star/task/XInteractionHandler.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <cppuhelper/implbase1.hxx>
#include <rtl/ref.hxx>

#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

/// Answers the office's questions in the user's place: go on without a lock file, give up at everything else.
class Answers : public cppu::WeakImplHelper1<css::task::XInteractionHandler> {
  public:
    void SAL_CALL handle(const Reference<css::task::XInteractionRequest>& request) override {
        const rtl::OUString question = request->getRequest().getValueTypeName();
        if (question.startsWith("com.sun.star.document.LockFile"))
            return Choose<css::task::XInteractionApprove>(request);
        m_question = FromUno(question);
        Choose<css::task::XInteractionAbort>(request);
    }
    /// Type of the question at which loading was given up; empty if none came.
    const String& Question() const { return m_question; }

  private:
    template <class Continuation>
    void Choose(const Reference<css::task::XInteractionRequest>& request) {
        for (const auto& continuation : request->getContinuations())
            if (Reference<Continuation> choice(continuation, UNO_QUERY); choice.is()) return choice->select();
    }

    String m_question;
};

host::Error Refusal(const String& path, const String& reason) {
    const auto name = path.substr(path.find_last_of(u'/') + 1);
    return OfficeError(u"Open", u"\"" + name + u"\" " + reason);
}

host::Error RefusalAfter(const String& path, const Answers& answers) {
    if (answers.Question().find(u"Password") != String::npos)
        return Refusal(path, u"is protected by a password. Save it without one and try again.");
    return Refusal(
        path, u"is damaged, or not a presentation that Impress can open with the parts of LibreOffice installed here.");
}

Any ValueOf(const css::uno::Sequence<css::beans::PropertyValue>& values, const char* name) {
    for (const auto& value : values)
        if (value.Name.equalsAscii(name)) return value.Value;
    return {};
}

Reference<css::container::XNameAccess> Named(const Reference<css::uno::XComponentContext>& remote,
                                             const char* service) {
    return Reference<css::container::XNameAccess>(
        remote->getServiceManager()->createInstanceWithContext(rtl::OUString::createFromAscii(service), remote),
        UNO_QUERY_THROW);
}

/// Looks up text `key` of entry `entry` in one of the office's tables; empty if there is none.
rtl::OUString Entry(const Reference<css::container::XNameAccess>& table, const rtl::OUString& entry, const char* key) {
    css::uno::Sequence<css::beans::PropertyValue> values;
    rtl::OUString text;
    if (entry.isEmpty() || !table->hasByName(entry)) return text;
    table->getByName(entry) >>= values;
    ValueOf(values, key) >>= text;
    return text;
}

/// The filter that reads the file's content; empty if that is no presentation, whatever the file's name.
rtl::OUString PresentationFilter(const Reference<css::uno::XComponentContext>& remote,
                                 css::uno::Sequence<css::beans::PropertyValue> descriptor) {
    const auto types = Named(remote, "com.sun.star.document.TypeDetection");
    const auto type =
        Reference<css::document::XTypeDetection>(types, UNO_QUERY_THROW)->queryTypeByDescriptor(descriptor, true);
    const auto filter = Entry(types, type, "PreferredFilter");
    const auto service = Entry(Named(remote, "com.sun.star.document.FilterFactory"), filter, "DocumentService");
    return service == "com.sun.star.presentation.PresentationDocument" ? filter : rtl::OUString();
}

}  // namespace

Reference<css::frame::XModel> LoadDeck(const Reference<css::uno::XComponentContext>& remote, const String& path) {
    const auto url = UrlOfPath(path);
    const rtl::Reference<Answers> answers(new Answers);
    const auto handler = Property("InteractionHandler", Any(Reference<css::task::XInteractionHandler>(answers.get())));
    const auto filter = PresentationFilter(remote, Properties({Property("URL", Any(url)), handler}));
    if (filter.isEmpty()) throw RefusalAfter(path, *answers);
    const auto arguments =
        Properties({handler, Property("FilterName", Any(filter)), Property("OnMainThread", Any(true)),
                    // A template is opened itself: a new document made from it would have no name to be recorded under.
                    Property("AsTemplate", Any(false)),
                    Property("MacroExecutionMode", Any(css::document::MacroExecMode::NEVER_EXECUTE)),
                    Property("UpdateDocMode", Any(css::document::UpdateDocMode::NO_UPDATE))});
    try {
        Reference<css::frame::XModel> model(
            css::frame::Desktop::create(remote)->loadComponentFromURL(url, "_blank", 0, arguments), UNO_QUERY);
        if (model.is()) return model;
    } catch (const css::lang::DisposedException&) {
        throw;
    } catch (const css::uno::Exception&) {
        // Told below.
    }
    throw RefusalAfter(path, *answers);
}

}  // namespace kestrum::impress
