// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QAccessibleActionInterface>
#include <QAccessibleObject>

class QQuickItem;

namespace stowly {

// What assistive technology sees of a bulk-action tile (MenuActionButton). Qt Quick 6.4
// reports every item as enabled and lets its press action through, and QML cannot say
// otherwise; this interface reports a disabled tile as disabled (AT-SPI: not enabled, not
// sensitive), not focusable, and with no actions. Enabled tiles read and press as buttons.
class ActionTileAccessible : public QAccessibleObject, public QAccessibleActionInterface {
public:
    explicit ActionTileAccessible(QQuickItem* tile);

    // Makes Qt use this interface for every tile; before the first view loads.
    static void install();

    QAccessibleInterface* parent() const override;
    int childCount() const override { return 0; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QWindow* window() const override;
    QRect rect() const override;
    QString text(QAccessible::Text kind) const override;
    QAccessible::Role role() const override { return QAccessible::Button; }
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString& actionName) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QQuickItem* tile() const;
    bool isDisabled() const;
};

} // namespace stowly
