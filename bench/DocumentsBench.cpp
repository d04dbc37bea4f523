// corvane-bench-documents FILE [LAYERS [REPS]]
//
// Saving and loading a map of 1000 layers of the file, as the viewer does it, in memory: from the
// view to the text, and from the text until the view has its layers, of which some still open. The
// limit is a bare program that makes the same text with a stream writer, and reads it into a tree
// and takes every attribute, without a layer.

#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/map/Layer.h>
#include <viewer/maps/MapDocumentReader.h>
#include <viewer/maps/MapDocumentWriter.h>

#include <QDir>
#include <QDomDocument>
#include <QDomElement>
#include <QFileInfo>
#include <QThreadPool>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cstdio>
#include <memory>

using namespace Corvane;
using namespace Corvane::Bench;
using namespace Corvane::Viewer;

namespace {

QByteArray documentOf(const QString& file, int layers)
{
    QByteArray text = "<mapcanvas><bounds tlx=\"0\" tly=\"10\" brx=\"10\" bry=\"0\"/><layers>";
    for (int i = 0; i < layers; ++i) {
        text += "<layer class=\"Corvane::Map::GdalRasterLayer\"><datasource value=\"" +
                file.toHtmlEscaped().toUtf8() + "\"/></layer>";
    }
    return text + "</layers></mapcanvas>";
}

QByteArray save(Map::MapView& view)
{
    const std::unique_ptr<QDomDocument> document(view.saveMapXML());
    return mapDocumentText(*document);
}

bool load(const QByteArray& text, Map::MapView& view)
{
    QDomDocument document;
    QString reason;
    QDir folder("/");
    return parseMapDocument(text, &document, &reason) == MapReading::Read &&
           view.loadMapXML(document, folder, &reason);
}

/// Every element with its attributes and text, from a tree that is there.
void copyTo(QXmlStreamWriter& writer, const QDomElement& element)
{
    writer.writeStartElement(element.tagName());
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        writer.writeAttribute(attribute.name(), attribute.value());
    }
    if (element.firstChildElement().isNull()) {
        writer.writeCharacters(element.text());
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        copyTo(writer, child);
    }
    writer.writeEndElement();
}

QByteArray saveBare(const QDomDocument& document)
{
    QByteArray text;
    QXmlStreamWriter writer(&text);
    writer.writeStartDocument();
    copyTo(writer, document.documentElement());
    writer.writeEndDocument();
    return text;
}

int takeAttributes(const QDomElement& element)
{
    int size = element.text().size();
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        size += attributes.item(i).toAttr().value().size();
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        size += takeAttributes(child);
    }
    return size;
}

/// Until every layer has opened.
void waitFor(Map::MapView& view)
{
    const auto& layers = view.getLayers();
    while (!std::all_of(layers.begin(), layers.end(),
                        [](Map::Layer* layer) { return layer->isValid(); }))
    {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QThreadPool::globalInstance()->waitForDone();
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: corvane-bench-documents FILE [LAYERS [REPS]]\n");
        return 2;
    }
    const QString file = QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath();
    const int count = argc > 2 ? atoi(argv[2]) : 1000;
    const int repetitions = argc > 3 ? atoi(argv[3]) : 5;

    BenchResult saving{QString("documents.save_%1").arg(count), "ms", {}, {}, {}};
    BenchResult loading{QString("documents.load_%1").arg(count), "ms", {}, {}, {}};
    BenchResult opening{QString("documents.open_%1").arg(count), "ms", {}, {}, {}};
    QByteArray text = documentOf(file, count);
    for (int i = 0; i < repetitions; ++i) {
        stage.reset();
        const Stopwatch loadWatch;
        if (!load(text, stage.view()) || stage.view().getNumberOfLayers() != count) {
            std::fprintf(stderr, "the map does not load\n");
            return 2;
        }
        loading.samples.push_back(loadWatch.milliseconds());
        waitFor(stage.view());
        opening.samples.push_back(loadWatch.milliseconds());

        const Stopwatch saveWatch;
        text = save(stage.view());
        saving.samples.push_back(saveWatch.milliseconds());

        const Stopwatch bareLoadWatch;
        QDomDocument document;
        document.setContent(text);
        const int size = takeAttributes(document.documentElement());
        loading.limitSamples.push_back(bareLoadWatch.milliseconds());
        const Stopwatch bareSaveWatch;
        const QByteArray bare = saveBare(document);
        saving.limitSamples.push_back(bareSaveWatch.milliseconds());
        if (size == 0 || bare.isEmpty()) {
            return 2;
        }
    }
    saving.print();
    loading.print();
    opening.print();
    return 0;
}
