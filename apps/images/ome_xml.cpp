// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/stack_description.h"
#include "terminal/errors.h"

#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <optional>

namespace tesmor::apps {

namespace {

// Pages that follow each other, and the plane that the first of them is.
struct PageRun {
    int page = 0;
    int slice = 0;
    int channel = 0;
    int time = 0;
    std::optional<int> count; // nothing: all
    QString fileName;         // the file that holds them; empty: this one
    QString fileId;
};

struct OmeDocument {
    QString id;
    int images = 0;
    bool isElsewhere = false; // only the name of another file that describes this one
    QString order = "XYZCT";
    int slices = 1;
    int channels = 1;
    int times = 1;
    QMap<int, QString> channelNames;
    int channelElements = 0; // one with three samples is an RGB page
    QSizeF pixelSize;
    std::vector<PageRun> runs;
};

int numberOf(const QXmlStreamAttributes& attributes, const char* name, int otherwise)
{
    bool isNumber = false;
    const int number = attributes.value(name).toInt(&isNumber);
    return isNumber && number >= 0 ? std::min(number, MOST_PAGES) : otherwise;
}

double lengthOf(const QXmlStreamAttributes& attributes, const QString& name)
{
    const QString unit = attributes.value(name + "Unit").toString();
    return attributes.value(name).toDouble() * (unit.isEmpty() ? 1e-6 : metresOf(unit));
}

void readPixels(const QXmlStreamAttributes& attributes, OmeDocument& document)
{
    document.order = attributes.value("DimensionOrder").toString();
    document.slices = std::max(1, numberOf(attributes, "SizeZ", 1));
    document.channels = std::max(1, numberOf(attributes, "SizeC", 1));
    document.times = std::max(1, numberOf(attributes, "SizeT", 1));
    document.pixelSize = QSizeF(lengthOf(attributes, "PhysicalSizeX"), lengthOf(attributes, "PhysicalSizeY"));
}

PageRun pageRun(const QXmlStreamAttributes& attributes)
{
    PageRun run;
    run.page = numberOf(attributes, "IFD", 0);
    run.slice = numberOf(attributes, "FirstZ", 0);
    run.channel = numberOf(attributes, "FirstC", 0);
    run.time = numberOf(attributes, "FirstT", 0);
    if (attributes.hasAttribute("PlaneCount"))
        run.count = numberOf(attributes, "PlaneCount", 1);
    else if (attributes.hasAttribute("IFD"))
        run.count = 1;
    return run;
}

// Of the first image; the others are only counted.
OmeDocument parse(const DescribedFile& file)
{
    OmeDocument document;
    QXmlStreamReader xml(file.description);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        const QString name = xml.name().toString();
        if (name == "OME")
            document.id = attributes.value("UUID").toString();
        else if (name == "BinaryOnly")
            document.isElsewhere = true;
        else if (name == "Image")
            ++document.images;
        else if (document.images > 1)
            continue;
        else if (name == "Pixels")
            readPixels(attributes, document);
        else if (name == "Channel")
            document.channelNames[document.channelElements++] = attributes.value("Name").toString();
        else if (name == "TiffData")
            document.runs.push_back(pageRun(attributes));
        else if (name == "UUID" && !document.runs.empty()) {
            document.runs.back().fileName = attributes.value("FileName").toString();
            document.runs.back().fileId = xml.readElementText();
        }
    }
    if (xml.hasError())
        throw UserError(QString("%1: damaged (its OME-XML: %2); save it again").arg(file.name, xml.errorString()));
    if (document.channelElements > 0)
        document.channels = document.channelElements;
    if (document.runs.empty())
        document.runs.emplace_back();
    return document;
}

std::int64_t planeCount(const OmeDocument& document)
{
    return std::int64_t{document.slices} * document.channels * document.times;
}

// How far a step along each dimension leads in the order of planes.
struct Strides {
    std::int64_t slice = 1;
    std::int64_t channel = 1;
    std::int64_t time = 1;
};

Strides stridesOf(const OmeDocument& document)
{
    Strides strides;
    std::int64_t stride = 1;
    for (const QChar dimension : document.order) {
        if (dimension == 'Z') {
            strides.slice = stride;
            stride *= document.slices;
        } else if (dimension == 'C') {
            strides.channel = stride;
            stride *= document.channels;
        } else if (dimension == 'T') {
            strides.time = stride;
            stride *= document.times;
        }
    }
    return strides;
}

void appendPlanes(const PageRun& run, const OmeDocument& document, const DescribedFile& file,
                  std::vector<Plane>& planes)
{
    const Strides strides = stridesOf(document);
    const std::int64_t total = planeCount(document);
    const std::int64_t first = run.slice * strides.slice + run.channel * strides.channel + run.time * strides.time;
    const std::int64_t count = run.count.value_or(static_cast<int>(std::min<std::int64_t>(total - first, MOST_PAGES)));
    if (run.page + count > file.pageCount || first + count > total)
        throw UserError(QString("%1: says that it has %2 planes, but has %3 pages; save it again")
                            .arg(file.name)
                            .arg(total)
                            .arg(file.pageCount));
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t index = first + i;
        planes.push_back({static_cast<int>(run.page + i), static_cast<int>(index / strides.channel % document.channels),
                          static_cast<int>(index / strides.time % document.times),
                          static_cast<int>(index / strides.slice % document.slices)});
    }
}

bool isHere(const PageRun& run, const OmeDocument& document, const DescribedFile& file)
{
    const bool isNamed = !run.fileName.isEmpty() || !run.fileId.isEmpty();
    return !isNamed || run.fileName == QFileInfo(file.name).fileName() ||
           (!run.fileId.isEmpty() && run.fileId == document.id);
}

} // namespace

StackDescription readOmeXml(const DescribedFile& pages)
{
    const OmeDocument document = parse(pages);
    DescribedFile file = pages;
    StackDescription stack{{}, document.channelNames, {document.pixelSize}};
    const bool isWhole =
        std::ranges::all_of(document.runs, [&](const PageRun& run) { return isHere(run, document, pages); });
    stack.behindOnePage = isWhole && liesBehindOnePage(file, planeCount(document));
    if (stack.behindOnePage)
        file.pageCount = static_cast<int>(planeCount(document));
    if (file.pageCount == 1) { // of whichever plane: one of several files, or taken out of a stack
        stack.planes = plainPlanes(1);
        return stack;
    }
    if (document.isElsewhere)
        throw UserError(file.name + ": is described in another file; save it as an OME-TIFF that describes itself");
    if (document.images > 1)
        throw UserError(
            QString("%1: holds %2 image series; save each to its own file").arg(file.name).arg(document.images));
    for (const PageRun& run : document.runs) {
        if (isHere(run, document, file))
            appendPlanes(run, document, file, stack.planes);
    }
    if (stack.planes.empty())
        throw UserError(file.name + ": describes other files, perhaps since it was renamed; save it again");
    return stack;
}

} // namespace tesmor::apps
