// What the commands are called. The entries of the menu tree below its popup "Kestrum", in their order: which level
// they stand on, their caption's key in the language file and its English text, and the event that a click runs.
#pragma once

#include <array>

#include "addin/dsrImagePowerPoint.h"

namespace kestrum {

struct MenuTree {
    struct Entry {
        /// Entries of level 2 belong to the popup in front of them.
        int level;
        StringView key;
        StringView caption;
        /// Null for a popup.
        void (dsrImagePowerPoint::*click)(host::ICommandBarButton&, bool&);
    };

    /// Of the captions in the language file.
    static constexpr StringView kSection = u"frmMainBar";
    static constexpr std::array<Entry, 16> kEntries{{
        {1, u"mnuEdit", u"Edit Presentation", &dsrImagePowerPoint::p_menuEdit_Click},
        {1, u"mnuUpload", u"Upload", &dsrImagePowerPoint::p_menuExport_Click},
        {1, u"mnuCompress", u"Compress", &dsrImagePowerPoint::p_menuCompress_Click},
        {1, u"mnuPreview", u"Preview", &dsrImagePowerPoint::p_menuPreview_Click},
        {1, u"mnuConfigure", u"Configure", &dsrImagePowerPoint::p_menuConfigure_Click},
        {1, u"mnuPublish", u"Publish", nullptr},
        {2, u"mnuMP4", u"MP4 format", &dsrImagePowerPoint::p_menuPublish2MP4_Click},
        {2, u"mnuAudio", u"MP3 Audio", &dsrImagePowerPoint::p_menuPublish2Mp3_Click},
        {2, u"mnuKestrum7", u"Kestrum 7", &dsrImagePowerPoint::p_menuPublish2Kestrum7_Click},
        {1, u"mnuAdvanced", u"Advanced", nullptr},
        {2, u"mnuAdvEdit", u"Advanced Edit", &dsrImagePowerPoint::p_menuAdvEdit_Click},
        {2, u"mnuChangeRes", u"Change Resolution", &dsrImagePowerPoint::p_menuChangeRes_Click},
        {2, u"mnuDevice", u"Device", &dsrImagePowerPoint::p_menuCfgDevice_Click},
        {2, u"mnuYtUpload", u"YouTube Upload", &dsrImagePowerPoint::p_menuYtUpload_Click},
        {1, u"mnuHelp", u"Help", &dsrImagePowerPoint::p_menuHelp_Click},
        {1, u"mnuAbout", u"About Kestrum", &dsrImagePowerPoint::p_menuAbout_Click},
    }};

    /// A command without an entry in the tree.
    struct Other {
        StringView key;
        StringView caption;
    };
    static constexpr std::array<Other, 3> kOthers{
        {{u"mnuflash", u"Flash format"}, {u"mnuWMV", u"WMV format"}, {u"mnuConfigTemplate", u"Template Settings"}}};

    /// Caption of the command with this key, in the tree or not; empty for an unknown one.
    static String CaptionOf(const addin::Context& c, StringView key);
};

}  // namespace kestrum
