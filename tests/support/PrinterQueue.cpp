#include <tests/support/PrinterQueue.h>

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

#include <cstring>

namespace {

// As the printing service's library lays them out.
struct Option
{
    const char* name;
    const char* value;
};

struct Destination
{
    char* name;
    char* instance;
    int isDefault;
    int optionCount;
    Option* options;
};

// The type's bits say that it prints in colour.
Option colourPrinter = {"printer-type", "8"};

constexpr char description[] = R"ppd(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "PAPER.PPD"
*Manufacturer: "Paper"
*Product: "(Paper)"
*ModelName: "Paper"
*ShortNickName: "Paper"
*NickName: "Paper"
*PSVersion: "(3010.000) 0"
*LanguageLevel: "3"
*ColorDevice: True
*DefaultColorSpace: RGB
*DefaultResolution: 300dpi
*OpenUI *PageSize/Page Size: PickOne
*DefaultPageSize: A4
*PageSize A4/A4: ""
*PageSize A3/A3: ""
*PageSize A5/A5: ""
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*DefaultPageRegion: A4
*PageRegion A4/A4: ""
*PageRegion A3/A3: ""
*PageRegion A5/A5: ""
*CloseUI: *PageRegion
*DefaultImageableArea: A4
*ImageableArea A4/A4: "0 0 595 842"
*ImageableArea A3/A3: "0 0 842 1191"
*ImageableArea A5/A5: "0 0 420 595"
*DefaultPaperDimension: A4
*PaperDimension A4/A4: "595 842"
*PaperDimension A3/A3: "842 1191"
*PaperDimension A5/A5: "420 595"
)ppd";

bool isPresent = true;

QList<QByteArray>& jobs()
{
    static QList<QByteArray> kept;
    return kept;
}

Destination* paperPrinter()
{
    return new Destination{qstrdup("paper"), nullptr, 1, 1, &colourPrinter};
}

} // namespace

namespace PrinterQueue {

QList<QByteArray> takeJobs()
{
    QList<QByteArray> taken;
    taken.swap(jobs());
    return taken;
}

int jobCount()
{
    return jobs().size();
}

void setPresent(bool present)
{
    isPresent = present;
}

} // namespace PrinterQueue

extern "C" {

__attribute__((visibility("default"))) int cupsGetDests(Destination** destinations)
{
    *destinations = isPresent ? paperPrinter() : nullptr;
    return isPresent ? 1 : 0;
}

__attribute__((visibility("default"))) Destination* cupsGetNamedDest(void*, const char* name,
                                                                     const char*)
{
    return isPresent && (!name || std::strcmp(name, "paper") == 0) ? paperPrinter() : nullptr;
}

__attribute__((visibility("default"))) void cupsFreeDests(int count, Destination* destinations)
{
    for (int i = 0; i < count; ++i) {
        delete[] destinations[i].name;
    }
    delete destinations;
}

/// The path of a file that the caller removes.
__attribute__((visibility("default"))) const char* cupsGetPPD(const char*)
{
    static QByteArray path;
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/paper-XXXXXX.ppd"));
    file.setAutoRemove(false);
    if (!file.open() || file.write(description) < 0) {
        return nullptr;
    }
    path = QFile::encodeName(file.fileName());
    return path.constData();
}

__attribute__((visibility("default"))) int cupsPrintFile(const char*, const char* fileName,
                                                         const char*, int, void*)
{
    QFile file(QFile::decodeName(fileName));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    jobs().append(file.readAll());
    return jobs().size();
}

} // extern "C"
