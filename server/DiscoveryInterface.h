#pragma once

#include <QString>

namespace Corvane::Server {

class ImageFolder;
struct ImageList;
struct Reply;
struct Request;

/// What the server says of itself.
struct ServerDescription
{
    QString title;
    QString contact;
    QString address; ///< as users reach it
};

/// Four numbers, the first of which tells clients which interfaces there are.
QString serverBuild();

/// Answers what there is, in XML. Any thread.
class DiscoveryInterface
{
public:
    /// Neither is owned; both outlive it.
    DiscoveryInterface(ImageFolder& images, const ServerDescription& description);

    Reply answer(const Request& request) const;

private:
    Reply tree(const Request& request) const;
    Reply services() const;

    ImageFolder& images;
    const ServerDescription& description;
};

} // namespace Corvane::Server
