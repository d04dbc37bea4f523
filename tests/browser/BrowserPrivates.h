#pragma once

#include <corvane/browser/ZWTPBrowser.h>

#include <QString>

/// The doors to a rule that no other one leads to alone, and to what a request is sent with. An explicit instantiation may name private
/// members.
template <QString (Corvane::Gui::ZWTPBrowser::*member)(QString)>
struct StripDoor
{
    friend QString stripped(Corvane::Gui::ZWTPBrowser& browser, const QString& url)
    {
        return (browser.*member)(url);
    }
};
QString stripped(Corvane::Gui::ZWTPBrowser& browser, const QString& url);
template struct StripDoor<&Corvane::Gui::ZWTPBrowser::stripUsernamePassword>;

template <QNetworkAccessManager* Corvane::Gui::ZWTPBrowser::*member>
struct ManagerDoor
{
    friend QNetworkAccessManager& managerOf(Corvane::Gui::ZWTPBrowser& browser)
    {
        return *(browser.*member);
    }
};
QNetworkAccessManager& managerOf(Corvane::Gui::ZWTPBrowser& browser);
template struct ManagerDoor<&Corvane::Gui::ZWTPBrowser::networkManager>;
