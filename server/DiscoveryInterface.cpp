#include <server/DiscoveryInterface.h>

#include <server/Exchange.h>
#include <server/ImageFolder.h>
#include <server/ServiceName.h>

#include <corvane/core/Application.h>

#include <QXmlStreamWriter>

#include <map>

namespace Corvane::Server {

namespace {

// Clients ask for pictures in the present way from this number on.
constexpr int interfaceGeneration = 13;

const char* const xmlType = "text/xml; charset=utf-8";

// Clients keep what they may; the folder changes without telling them.
Reply xmlReply(const QByteArray& xml)
{
    return Reply::data(xml, xmlType).header("Cache-Control", "no-cache");
}

// Clients show the text of a reply that succeeds, and of others only that they failed.
Reply errorReply(const QString& text)
{
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.writeStartDocument();
    writer.writeTextElement(QStringLiteral("error"), text);
    writer.writeEndDocument();
    return xmlReply(xml);
}

QString flag(bool yes)
{
    return yes ? QStringLiteral("true") : QStringLiteral("false");
}

/// A folder as clients see it.
struct Branch
{
    struct NameOrder
    {
        bool operator()(const QString& a, const QString& b) const
        {
            const int order = a.compare(b, Qt::CaseInsensitive);
            return order != 0 ? order < 0 : a < b;
        }
    };
    std::map<QString, Branch, NameOrder> folders;
    std::map<QString, const PublishedImage*, NameOrder> images;

    void add(const QString& path, const PublishedImage* image)
    {
        const int slash = path.indexOf(QLatin1Char('/'));
        if (slash < 0) {
            images.emplace(path, image);
        } else {
            folders[path.left(slash)].add(path.mid(slash + 1), image);
        }
    }
};

void writeImage(QXmlStreamWriter& writer, const PublishedImage& image, const QString& service)
{
    writer.writeStartElement(QStringLiteral("dataset"));
    writer.writeAttribute(QStringLiteral("name"), image.path.mid(service.size()));
    writer.writeEmptyElement(QStringLiteral("services"));
    writer.writeAttribute(QStringLiteral("zwtp"), flag(image.canStream()));
    writer.writeAttribute(QStringLiteral("raxion"), flag(true));
    writer.writeEndElement();
}

void writeBranch(QXmlStreamWriter& writer, const QString& title, const Branch& branch,
                 const QString& service, bool recursive)
{
    writer.writeStartElement(QStringLiteral("folder"));
    writer.writeAttribute(QStringLiteral("title"), title);
    writer.writeStartElement(QStringLiteral("folders"));
    for (const auto& [name, inner] : branch.folders) {
        if (recursive) {
            writeBranch(writer, name, inner, service, true);
        } else {
            writer.writeEmptyElement(QStringLiteral("folder"));
            writer.writeAttribute(QStringLiteral("title"), name);
        }
    }
    writer.writeEndElement();
    writer.writeStartElement(QStringLiteral("datasets"));
    for (const auto& [name, image] : branch.images) {
        writeImage(writer, *image, service);
    }
    writer.writeEndElement();
    writer.writeEndElement();
}

// The images whose paths begin with the folder; false where there are none.
bool branchOf(const ImageList& list, const QString& folder, Branch* branch)
{
    const QString start = folder + QLatin1Char('/');
    bool any = false;
    for (const auto& image : list.images) {
        if (image->path.startsWith(start)) {
            branch->add(image->path.mid(start.size()), image.get());
            any = true;
        }
    }
    return any;
}

// "/a/b/" and "a/b" are "/a/b"; the root is empty.
QString plainFolder(const QString& folder)
{
    const QStringList parts = folder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return parts.isEmpty() ? QString() : QLatin1Char('/') + parts.join(QLatin1Char('/'));
}

void writeServerInfo(QXmlStreamWriter& writer, const ServerDescription& server,
                     const QString& summary)
{
    writer.writeEmptyElement(QStringLiteral("serverinfo"));
    writer.writeAttribute(QStringLiteral("title"), server.title);
    writer.writeAttribute(QStringLiteral("build"), serverBuild());
    writer.writeAttribute(QStringLiteral("onlineresource"), server.address);
    writer.writeAttribute(QStringLiteral("abstract"), summary);
    writer.writeAttribute(QStringLiteral("contactinformation"), server.contact);
}

} // namespace

QString serverBuild()
{
    QStringList parts = Application::libraryVersion().split(QLatin1Char('.'));
    while (parts.size() < 3) {
        parts.append(QStringLiteral("0"));
    }
    return QStringLiteral("%1.%2").arg(interfaceGeneration).arg(parts.mid(0, 3).join('.'));
}

DiscoveryInterface::DiscoveryInterface(ImageFolder& folder, const ServerDescription& server)
    : images(folder),
      description(server)
{
}

Reply DiscoveryInterface::answer(const Request& request) const
{
    const QString what = request.item("request");
    if (what == QLatin1String("getkrsinfo")) {
        return tree(request);
    }
    if (what == QLatin1String("getserviceinfo")) {
        return services();
    }
    return errorReply(QStringLiteral("unknown request \"%1\"").arg(what));
}

Reply DiscoveryInterface::tree(const Request& request) const
{
    const QString format = request.item("format");
    if (!format.isEmpty() && format != QLatin1String("xml")) {
        return errorReply(QStringLiteral("there is no format \"%1\", only xml").arg(format));
    }
    const std::shared_ptr<const ImageList> list = images.list();
    const QString service = ServiceName::folderOf(request.item("service"));
    const QString folder = plainFolder(request.item("folder"));
    Branch branch;
    if (!service.isEmpty() && !branchOf(*list, service, &branch)) {
        return errorReply(QStringLiteral("there is no service \"%1\"").arg(service.mid(1)));
    }
    branch = Branch();
    if (!branchOf(*list, service + folder, &branch) && !folder.isEmpty()) {
        return errorReply(QStringLiteral("there is no folder \"%1\"").arg(folder));
    }
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("krsinfo"));
    writer.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    writeServerInfo(writer, description,
                    QStringLiteral("%1 images in one folder").arg(list->images.size()));
    writer.writeTextElement(QStringLiteral("keyword"), QStringLiteral("imagery"));
    writer.writeTextElement(QStringLiteral("serveralias"), description.address);
    for (const char* const picture : {"image/png", "image/jpeg"}) {
        writer.writeTextElement(QStringLiteral("format"), QString::fromLatin1(picture));
    }
    const bool recursive = request.item("recursive") != QLatin1String("false");
    writeBranch(writer, folder.isEmpty() ? QStringLiteral("/") : folder.section('/', -1), branch,
                service, recursive);
    writer.writeEndElement();
    writer.writeEndDocument();
    return xmlReply(xml);
}

Reply DiscoveryInterface::services() const
{
    QStringList names(ServiceName::usual());
    for (const QString& folder : images.list()->topFolders()) {
        // a folder of that name cannot be told from the whole
        if (!ServiceName::folderOf(folder).isEmpty()) {
            names.append(folder);
        }
    }
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("serviceinfo"));
    writeServerInfo(writer, description, QString());
    writer.writeStartElement(QStringLiteral("services"));
    for (const QString& name : names) {
        writer.writeEmptyElement(QStringLiteral("service"));
        writer.writeAttribute(QStringLiteral("name"), name);
    }
    writer.writeEndElement();
    writer.writeEndElement();
    writer.writeEndDocument();
    return xmlReply(xml);
}

} // namespace Corvane::Server
