#pragma once

namespace Corvane::Gui {

/// The kind of URL that a server browser looks for.
enum BrowserProtocol : int
{
    ProtocolZWTP = 0,  ///< streaming URLs, of datasets that offer the zwtp service
    ProtocolRaxion = 1 ///< HTTP URLs, of datasets that offer the raxion service
};

} // namespace Corvane::Gui
