#include <corvane/browser/KRSServerInfo.h>

#include "ui_KRSServerInfo.h"

#include <corvane/browser/ServerItems_p.h>

namespace Corvane::Gui {

KRSServerInfo::KRSServerInfo(QWidget* parent) : QDialog(parent), ui(new Ui::KRSServerInfoClass)
{
    ui->setupUi(this);
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    connect(ui->okButton, SIGNAL(clicked(bool)), this, SLOT(accept()));
}

KRSServerInfo::~KRSServerInfo()
{
    delete ui;
}

void KRSServerInfo::setHostname(QString text)
{
    showText(ui->hostname, text);
}

void KRSServerInfo::setTitle(QString text)
{
    showText(ui->title, text);
}

void KRSServerInfo::setBuild(QString text)
{
    showText(ui->build, text);
}

void KRSServerInfo::setKeyWords(QStringList texts)
{
    showText(ui->keywords, texts.join(QLatin1Char(',')));
}

void KRSServerInfo::setServerAliases(QStringList texts)
{
    showText(ui->serverAliases, texts.join(QLatin1Char(',')));
}

void KRSServerInfo::setOnlineResource(QString text)
{
    showText(ui->onlineResource, text);
}

void KRSServerInfo::setFormats(QStringList texts)
{
    showText(ui->formats, texts.join(QLatin1Char(',')));
}

void KRSServerInfo::setAbstract(QString text)
{
    ui->abstract_2->setText(text);
}

void KRSServerInfo::setContactInfo(QString text)
{
    ui->contactInfo->setText(text);
}

} // namespace Corvane::Gui
