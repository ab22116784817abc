// One session of the program: the sum of all states, the forms, the contexts, and the entry object. An executable makes
// one on its ports; a test makes one on the scripted world. Nothing happens before the connection.
#pragma once

#include "addin/Companion.h"
#include "addin/Context.h"
#include "addin/dsrImagePowerPoint.h"

namespace kestrum {

class Session {
  public:
    /// `host` and its ports outlive the session; so do the command bars, which only Office has.
    explicit Session(host::Host& host, host::ICommandBars* commandBars = nullptr);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Connects to the host's application, as the host does when it loads the add-in.
    void Connect() { addIn.IDTExtensibility2_OnConnection(c.host.app, String(dsrImagePowerPoint::kProgId)); }
    void Disconnect() { addIn.IDTExtensibility2_OnDisconnection(); }

    /// A person is there: from now on the session has a companion, which says before, during and after a recording how
    /// it stands. `everyShow`: a show of any presentation tells that it is not being recorded.
    void Accompany(bool everyShow) {
        companion.reset();  // one at a time holds the add-in's ear
        companion = std::make_unique<Companion>(c, addIn, everyShow);
    }

    /// The companion's card about the last recording is being read.
    bool HasCard() const { return companion && companion->HasCard(); }
    /// Takes the card away: the program ends.
    void LeaveCard() {
        if (companion) companion->Leave();
    }

    support::State support;
    project::State project;
    devices::State devices;
    display::State display;
    recording::State recording;
    publish::State publish;
    addin::State addin;

  private:
    ui::Forms m_forms;  // goes before the states that its forms look at

  public:
    /// What every routine is given.
    addin::Context c;
    dsrImagePowerPoint addIn;
    /// Null while nobody is there.
    std::unique_ptr<Companion> companion;
};

}  // namespace kestrum
