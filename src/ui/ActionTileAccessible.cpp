// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActionTileAccessible.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>

namespace stowly {

namespace {

// QML types get meta-object class names of the form "<Type>_QMLTYPE_<n>".
bool isActionTile(const QString& className)
{
    return className.startsWith(QLatin1String("MenuActionButton_QMLTYPE_"));
}

QAccessibleInterface* actionTileFactory(const QString& className, QObject* object)
{
    if (!isActionTile(className))
        return nullptr;
    auto* item = qobject_cast<QQuickItem*>(object);
    return item ? new ActionTileAccessible(item) : nullptr;
}

// An item that assistive technology sees: one that sets something through `Accessible`,
// which gives it that attached object as a child.
bool isExposed(const QQuickItem* item)
{
    const QObjectList& children = item->children();
    return std::any_of(children.begin(), children.end(), [](const QObject* child) {
        return qstrcmp(child->metaObject()->className(), "QQuickAccessibleAttached") == 0;
    });
}

} // namespace

ActionTileAccessible::ActionTileAccessible(QQuickItem* tile) : QAccessibleObject(tile) {}

void ActionTileAccessible::install()
{
    static const bool installed = (QAccessible::installFactory(&actionTileFactory), true);
    Q_UNUSED(installed);
}

QQuickItem* ActionTileAccessible::tile() const
{
    return static_cast<QQuickItem*>(object());
}

bool ActionTileAccessible::isDisabled() const
{
    return tile()->property("disabled").toBool() || !tile()->isEnabled();
}

QAccessibleInterface* ActionTileAccessible::parent() const
{
    // The nearest exposed ancestor, as Qt Quick walks it; the window above the content item.
    QQuickWindow* window = tile()->window();
    for (QQuickItem* up = tile()->parentItem(); up; up = up->parentItem()) {
        if (window && up == window->contentItem())
            return QAccessible::queryAccessibleInterface(window);
        if (isExposed(up))
            return QAccessible::queryAccessibleInterface(up);
    }
    return window ? QAccessible::queryAccessibleInterface(window) : nullptr;
}

QWindow* ActionTileAccessible::window() const
{
    return tile()->window();
}

QRect ActionTileAccessible::rect() const
{
    QQuickWindow* window = tile()->window();
    if (!window)
        return {};
    const QRectF inScene = tile()->mapRectToScene(QRectF(0, 0, tile()->width(), tile()->height()));
    return QRect(window->mapToGlobal(inScene.topLeft().toPoint()), inScene.size().toSize());
}

QString ActionTileAccessible::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Name)
        return tile()->property("text").toString();
    return {};
}

QAccessible::State ActionTileAccessible::state() const
{
    QAccessible::State state;
    QQuickWindow* window = tile()->window();
    if (!window || !window->isVisible() || !tile()->isVisible() || qFuzzyIsNull(tile()->opacity()))
        state.invisible = true;
    if (isDisabled()) {
        state.disabled = true;
    } else {
        state.focusable = true;
        state.focused = tile()->hasActiveFocus();
    }
    return state;
}

void* ActionTileAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface*>(this);
    return nullptr;
}

QStringList ActionTileAccessible::actionNames() const
{
    if (isDisabled())
        return {};
    return {pressAction(), setFocusAction()};
}

void ActionTileAccessible::doAction(const QString& actionName)
{
    if (isDisabled())
        return;
    if (actionName == pressAction())
        QMetaObject::invokeMethod(tile(), "clicked"); // as a click: the tile's own guard applies
    else if (actionName == setFocusAction())
        tile()->forceActiveFocus(Qt::OtherFocusReason);
}

} // namespace stowly
