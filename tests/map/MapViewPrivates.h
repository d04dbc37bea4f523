#pragma once

#include <corvane/map/MapView.h>

#include <QPropertyAnimation>

/// The doors to what MapView keeps to itself and a test has to drive: the animation's clock, and
/// the menu that only derived classes of a program ask for. An explicit instantiation may name
/// private members.
template <QPropertyAnimation Corvane::Map::MapView::*member>
struct AnimationDoor
{
    friend QPropertyAnimation& animationOf(Corvane::Map::MapView& view) { return view.*member; }
};
QPropertyAnimation& animationOf(Corvane::Map::MapView& view);
template struct AnimationDoor<&Corvane::Map::MapView::extentAnimation>;

template <void (Corvane::Map::MapView::*member)()>
struct ContextMenuDoor
{
    friend void buildContextMenuOf(Corvane::Map::MapView& view) { (view.*member)(); }
};
void buildContextMenuOf(Corvane::Map::MapView& view);
template struct ContextMenuDoor<&Corvane::Map::MapView::buildContextMenu>;
