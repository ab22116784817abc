#include "adapters/impress/ImpressOffice.h"

#include <unistd.h>

#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XToolkitExperimental.hpp>
#include <com/sun/star/drawing/GraphicExportFilter.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <filesystem>
#include <set>
#include <thread>

#include "adapters/impress/BoxCloser.h"
#include "adapters/impress/DeckLoader.h"
#include "adapters/impress/DeckLock.h"
#include "adapters/impress/ImpressApplication.h"
#include "adapters/impress/OfficeProcess.h"
#include "adapters/impress/OfficeProfile.h"
#include "adapters/impress/Selection.h"
#include "adapters/impress/ShowWindow.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

namespace fs = std::filesystem;
using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

constexpr auto kStartLimit = std::chrono::seconds(90);
constexpr auto kEndLimit = std::chrono::seconds(10);
constexpr Patience kLoadPatience{15000, 300000};
constexpr Patience kSettlePatience{2000, 10000};
constexpr Patience kExportPatience{10000, 60000};

fs::path HostPath(const String& path) {
    return fs::path(host::ToUtf8(path));
}

/// Waits for the office to listen.
std::unique_ptr<OfficeLink> ConnectTo(OfficeProcess& process, const std::string& pipe) {
    const auto until = std::chrono::steady_clock::now() + kStartLimit;
    while (std::chrono::steady_clock::now() < until) {
        if (auto link = OfficeLink::TryConnect(host::FromUtf8(pipe))) return link;
        if (const auto code = process.ExitCode())
            throw OfficeError(u"Start", u"Impress ended while it started (code " +
                                            FromUno(rtl::OUString::number(*code)) +
                                            u"). Check that the display can be opened.");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    throw OfficeError(u"Start", u"Impress was started but does not answer.");
}

/// Lets the office finish what it does by and by after loading, its window's first painting above all. A show that is
/// started before is not drawn for seconds, and the window can come to lie above it.
void Settle(const Reference<css::uno::XComponentContext>& remote) {
    const Reference<css::awt::XToolkitExperimental> toolkit(css::awt::Toolkit::create(remote), UNO_QUERY);
    if (toolkit.is()) toolkit->processEventsToIdle();
}

}  // namespace

/// In the order in which they are made; undone from the last to the first.
struct ImpressOffice::Parts {
    UnsavedChanges unsaved = UnsavedChanges::Discard;
    std::unique_ptr<OfficeProfile> profile;
    std::unique_ptr<OfficeProcess> process;
    std::shared_ptr<OfficeModel> model;
    std::unique_ptr<OfficeMenu> menu;
    std::unique_ptr<ImpressApplication> application;
    std::set<fs::path> opened;
};

std::unique_ptr<ImpressOffice> ImpressOffice::Start(const OfficeOptions& options, host::IEventLoop& loop,
                                                    host::IMonitors& monitors) {
    auto parts = std::make_unique<Parts>();
    parts->unsaved = options.unsaved;
    parts->profile = std::make_unique<OfficeProfile>(fs::temp_directory_path());
    OfficeProcess::Options process;
    process.programFolder = options.programFolder.empty() ? KESTRUM_OFFICE_PROGRAM : options.programFolder;
    process.profile = parts->profile->Folder();
    process.pipe = process.profile.filename().string();
    process.display = options.display;
    process.vclPlugin = options.vclPlugin;
    parts->process = std::make_unique<OfficeProcess>(process);
    auto link = ConnectTo(*parts->process, process.pipe);
    parts->profile->BelongsTo(parts->process->Id());
    parts->model = OfficeModel::Create(std::move(link), loop, monitors, options.display);
    parts->menu = OfficeMenu::TakeOver(parts->model, loop);
    return std::unique_ptr<ImpressOffice>(new ImpressOffice(std::move(parts)));
}

std::unique_ptr<ImpressOffice> ImpressOffice::Join(const String& pipe, host::IEventLoop& loop,
                                                   host::IMonitors& monitors) {
    auto link = OfficeLink::TryConnect(pipe);
    if (!link) throw OfficeError(u"Join", u"No office listens under the name \"" + pipe + u"\".");
    auto parts = std::make_unique<Parts>();
    parts->model = OfficeModel::Create(std::move(link), loop, monitors, {});
    parts->menu = OfficeMenu::TakeOver(parts->model, loop);
    return std::unique_ptr<ImpressOffice>(new ImpressOffice(std::move(parts)));
}

ImpressOffice::ImpressOffice(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {
    m_parts->application = std::make_unique<ImpressApplication>(m_parts->model);
}

ImpressOffice::~ImpressOffice() {
    if (m_parts->process) {
        if (m_parts->unsaved == UnsavedChanges::Keep && HoldsChanges()) {
            m_parts->process->Release();
            m_parts->profile->Keep();
        } else {
            EndProcess();
        }
    }
    m_parts->model->Close();
}

host::IApplication& ImpressOffice::Application() {
    return *m_parts->application;
}

OfficeMenu* ImpressOffice::Menu() {
    return m_parts->menu.get();
}

bool ImpressOffice::HasXWindows() {
    const auto model = m_parts->model;
    const auto document = model->ActiveDocument();
    const std::uint32_t window = model->Link().Call(u"HasXWindows", [remote = model->Link().Remote(), document] {
        return XidOf(FindShowFrame(remote, document->Model()));
    });
    try {
        MeasureWindow(model->Display(), window);
        return true;
    } catch (const host::Error&) {
        return false;
    }
}

std::int64_t ImpressOffice::ProcessId() const {
    return m_parts->model->Link().ProcessId();
}

bool ImpressOffice::IsAlive() const {
    return !m_parts->model->Link().IsDead();
}

void ImpressOffice::Open(const String& path) {
    const auto file = HostPath(path);
    std::error_code ignored;
    if (!fs::is_regular_file(file, ignored))
        throw host::Error(host::ErrorNumber::FileNotFound, u"Open", u"There is no presentation \"" + path + u"\".");
    if (access(file.c_str(), R_OK) != 0)
        throw host::Error(host::ErrorNumber::PermissionDenied, u"Open", u"\"" + path + u"\" may not be read.");
    for (const auto& document : m_parts->model->Documents().All())
        if (document->Remembered().fullName == path) return;
    RefuseLockedDeck(file);
    m_parts->opened.insert(file);
    const BoxCloser closer(m_parts->model->Link().Remote());
    const auto document = m_parts->model->Link().Call(
        u"Open",
        [model = m_parts->model, path] {
            auto adopted = model->Adopt(LoadDeck(model->Link().Remote(), path));
            if (!adopted) throw OfficeError(u"Open", u"\"" + path + u"\" is not a presentation.");
            adopted->ReadFacts();
            return adopted;
        },
        kLoadPatience);
    m_parts->model->Link().Call(
        u"Open", [remote = m_parts->model->Link().Remote()] { Settle(remote); }, kLoadPatience);
    m_parts->model->DispatchUntil([&] { return document->IsLoaded(); }, kSettlePatience);
}

void ImpressOffice::SelectSlide(std::int32_t number) {
    const auto document = m_parts->model->ActiveDocument();
    m_parts->model->Link().Call(u"SelectSlide",
                                [document, number] { SelectSlideNumber(document->Model(), document->Page(number)); });
    // The slide pane follows from the office's own idle work.
    const auto isSelected = [&] {
        const auto numbers =
            m_parts->model->Link().Call(u"SelectSlide", [document] { return SelectedSlideNumbers(document->Model()); });
        return numbers == std::vector<std::int32_t>{number};
    };
    if (!m_parts->model->DispatchUntil(isSelected, kLoadPatience)) {
        throw OfficeError(u"SelectSlide", u"The slide to begin with cannot be selected.");
    }
}

void ImpressOffice::ExportSlidePng(std::int32_t number, const String& path, std::int32_t width, std::int32_t height) {
    const auto document = m_parts->model->ActiveDocument();
    m_parts->model->Link().Call(
        u"ExportSlidePng",
        [remote = m_parts->model->Link().Remote(), document, number, path, width, height] {
            const auto filter = css::drawing::GraphicExportFilter::create(remote);
            filter->setSourceDocument(Reference<css::lang::XComponent>(document->Page(number), UNO_QUERY_THROW));
            const auto size = Properties({Property("PixelWidth", Any(width)), Property("PixelHeight", Any(height))});
            const bool written = filter->filter(Properties({Property("URL", Any(UrlOfPath(path))),
                                                            Property("MediaType", Any(rtl::OUString("image/png"))),
                                                            Property("FilterData", Any(size))}));
            if (!written) throw OfficeError(u"ExportSlidePng", u"The picture cannot be written to \"" + path + u"\".");
        },
        kExportPatience);
}

bool ImpressOffice::HoldsChanges() {
    try {
        return m_parts->model->Link().Call(u"Saved", [model = m_parts->model] {
            for (const auto& document : model->Documents().All())
                if (Reference<css::util::XModifiable>(document->Model(), UNO_QUERY_THROW)->isModified()) return true;
            return false;
        });
    } catch (const host::Error&) {
        return false;  // a dead office holds nothing
    }
}

/// Closes all decks and asks the office to end. False if it is dead.
bool ImpressOffice::AskToEnd() {
    auto& link = m_parts->model->Link();
    try {
        link.Call(u"Close", [model = m_parts->model] {
            for (const auto& document : model->Documents().All())
                Reference<css::util::XCloseable>(document->Model(), UNO_QUERY_THROW)->close(false);
        });
    } catch (const host::Error&) {
        return !link.IsDead();
    }
    try {
        link.Call(u"Terminate", [remote = link.Remote()] { css::frame::Desktop::create(remote)->terminate(); });
    } catch (const host::Error&) {
        // Ending breaks the connection, sometimes before the answer.
    }
    return true;
}

/// Ends our office, the hard way if need be, and removes what a killed one leaves beside the decks.
void ImpressOffice::EndProcess() {
    auto& process = *m_parts->process;
    if (!AskToEnd() || !process.WaitForEnd(kEndLimit)) process.Kill();
    process.WaitForEnd(kEndLimit);
    for (const auto& deck : m_parts->opened) RemoveLockOf(m_parts->profile->Folder(), deck);
}

}  // namespace kestrum::impress
